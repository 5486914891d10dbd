#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"
#include "scanbuffer/messages/mdatatype.h"

#include <QByteArray>

#include <memory>
#include <string>

/// Base of every scan buffer message: a type, a payload, and the terminator ";".
///
/// A message is a value: built, written or read, dropped. One thread at a time. Writing packs and
/// some getters unpack the payload in place, which is why even const access is not shared.
class SPECTREE_EXPORT MData {
public:
    virtual ~MData();

    virtual MDataType GetType() const { return m_type; }
    virtual void SetType(MDataType type) { m_type = type; }
    /// The wire image. \throws KRException when the payload can't be packed.
    virtual std::string GetBinary() const;
    /// The wire image as the transmission layer takes it, written in place.
    virtual operator QByteArray() const;
    /// Bytes of the wire image.
    virtual std::uint32_t GetBinarySize() const;

    /// Parses one message; what stands behind its terminator is left alone. A malformed or short
    /// message, a type that nobody sends and a marker result that carries a sample are traced and
    /// give null. Reads no byte past \a length and takes no memory that the bytes don't stand for.
    /// \throws KRException "RangeCheck failed for Enum" for a type of MDT_Count or more
    static std::unique_ptr<MData> FromBinary(const char *data, Kelm::Long length);

protected:
    explicit MData(MDataType type = MDT_None) : m_type(type) {}
    MData(const MData &) = default;
    MData(MData &&) = default;
    MData &operator=(const MData &) = default;
    MData &operator=(MData &&) = default;

    /// Bytes that writePayload writes; packs first what goes out packed.
    virtual std::size_t payloadSize() const = 0;
    /// Writes the payload and returns the position behind it.
    virtual char *writePayload(char *destination) const = 0;

private:
    friend class MDataContainer;
    /// Parses one message inside the scope that the caller has opened, and advances the cursor.
    static std::unique_ptr<MData> parse(const char **cursor);
    char *write(char *destination) const;

    MDataType m_type;
};

/// A message that says all by its type.
class SPECTREE_EXPORT MDataId final : public MData {
public:
    explicit MDataId(MDataType type) : MData(type) {}

protected:
    std::size_t payloadSize() const override { return 0; }
    char *writePayload(char *destination) const override { return destination; }
};
