#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/valuebase.h"

#include <cstdint>

namespace values {

/// A block of bytes. It grows by need and never shrinks, so that blocks of about one size take no
/// allocation. Every set is a change, an equal one too; there is no undo. Threads as in ValueBase.
class SPECTREE_EXPORT ValueBuffer : public ValueBase {
public:
    class CommandSetValue;

    using ValueBase::ValueBase;
    ValueBuffer(const ValueBuffer &other);
    ValueBuffer &operator=(const ValueBuffer &other);

    /// Copies \a size bytes. \throws KRException for a negative \a size, with nothing changed.
    void SetValue(const void *bytes, int size, IObserver *source);
    /// The block, until the next change; null when there never was one.
    const char *GetValue(int &size) const;
    int GetSize() const { return m_size; }

    /// The bytes as Latin-1; a null text when there never was a block. Setting goes through
    /// SetValue only.
    QString GetStringValue() const override;
    ValueType GetType() const override { return VTYPE_ValueBuffer; }
    QString GetTypeName() const override { return QStringLiteral("ValueBuffer"); }
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    void store(const void *bytes, int size);

    std::unique_ptr<char[]> m_buffer;
    std::int32_t m_size = 0;
    std::int32_t m_capacity = 0;
};

/// Id 20. The bytes stand raw in every mode.
class SPECTREE_EXPORT ValueBuffer::CommandSetValue : public CommandOnValue {
public:
    static constexpr int kId = 20;
    CommandSetValue(ValueBuffer *value, std::string bytes, IObserver *source);
    CommandSetValue(ValueBuffer *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    std::string m_bytes;
};

} // namespace values
