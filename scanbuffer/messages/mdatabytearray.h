#pragma once

#include "scanbuffer/messages/mdata.h"

/// Bytes and a number; packed on the wire. docs/adapters.md tells what the bytes of each type are.
///
/// Writing packs the bytes in place, once; reading leaves them packed until GetValue asks, so that
/// a display that drops a stale message pays nothing for it.
class SPECTREE_EXPORT MDataByteArray : public MData {
public:
    MDataByteArray(QByteArray payload, short additional, MDataType type)
        : MData(type), m_payload(std::move(payload)), m_additional(additional)
    {
    }
    explicit MDataByteArray(const char **cursor);

    /// The plain bytes. Bytes that don't unpack are traced and read as empty; the message keeps
    /// them as they came.
    QByteArray GetValue() const;
    short GetAdditional() const { return m_additional; }

protected:
    std::size_t payloadSize() const override;
    char *writePayload(char *destination) const override;

    /// Unpacks in place; false when the bytes don't unpack.
    bool unpack() const;
    void pack() const;

    mutable QByteArray m_payload;
    short m_additional;

private:
    mutable bool m_packed = false;
};
