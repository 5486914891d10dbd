#include "valueclasses/valuebuffer.h"

#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/commandtags.h"

#include <cstring>

namespace values {

ValueBuffer::ValueBuffer(const ValueBuffer &other)
    : Observable(other), ISupportTransaction(other), ValueBase(other)
{
    if (other.m_buffer != nullptr)
        store(other.m_buffer.get(), other.m_size);
}

ValueBuffer &ValueBuffer::operator=(const ValueBuffer &other)
{
    if (this == &other)
        return *this;
    if (other.m_buffer != nullptr)
        store(other.m_buffer.get(), other.m_size);
    else
        m_size = 0;
    ValueBase::operator=(other); // last, for it may tell somebody who deletes this value
    return *this;
}

void ValueBuffer::SetValue(const void *bytes, int size, IObserver *source)
{
    if (size < 0)
        throw KRException(QStringLiteral("A buffer cannot hold %1 bytes.").arg(size), __FILE__,
                          "ValueBuffer", "SetValue", __LINE__);
    if (IsChangeForeign())
        return PostChange([this,
                           copy = std::string(static_cast<const char *>(bytes), std::size_t(size)),
                           source] { SetValue(copy.data(), int(copy.size()), source); });
    store(bytes, size);
    if (Record())
        RecordCommand(
            new CommandSetValue(this, std::string(m_buffer.get(), std::size_t(m_size)), source));
    NotifyObservers(CC_VALUE, source);
}

void ValueBuffer::store(const void *bytes, int size)
{
    std::unique_ptr<char[]> before; // the bytes may be the block's own
    if (size > m_capacity) {
        before = std::exchange(m_buffer, std::make_unique_for_overwrite<char[]>(std::size_t(size)));
        m_capacity = size;
    }
    m_size = size;
    if (size > 0)
        std::memmove(m_buffer.get(), bytes, std::size_t(size));
}

const char *ValueBuffer::GetValue(int &size) const
{
    size = m_size;
    return m_buffer.get();
}

QString ValueBuffer::GetStringValue() const
{
    return m_buffer != nullptr ? QString::fromLatin1(m_buffer.get(), m_size) : QString();
}

void ValueBuffer::Assign(const ValueBase &other)
{
    const auto &same = CastForAssign<ValueBuffer>(other);
    if (!PostAssignIfForeign(same))
        *this = same;
}

bool ValueBuffer::Compare(const ValueBase *other) const
{
    const auto *same = dynamic_cast<const ValueBuffer *>(other);
    return same != nullptr &&
           (same == this || (ValueBase::Compare(other) && m_size == same->m_size &&
                             (m_size == 0 || std::memcmp(m_buffer.get(), same->m_buffer.get(),
                                                         std::size_t(m_size)) == 0)));
}

void ValueBuffer::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandSetValue(this, std::string(m_buffer.get(), std::size_t(m_size)), nullptr)
        .AddCommandString(out, int(mode));
}

Command *ValueBuffer::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    if (id == CommandSetValue::kId)
        return new CommandSetValue(this, pos, source, mode);
    return ValueBase::CreateNextCommand(id, pos, source, mode);
}

ValueBuffer::CommandSetValue::CommandSetValue(ValueBuffer *value, std::string bytes,
                                              IObserver *source)
    : CommandOnValue(kId, value, source), m_bytes(std::move(bytes))
{
}

ValueBuffer::CommandSetValue::CommandSetValue(ValueBuffer *value, const char **pos,
                                              IObserver *source, int /*mode*/)
    : CommandOnValue(kId, value, pos, source)
{
    constexpr const char *className = "ValueBuffer::CommandSetValue";
    constexpr const char *functionName = "CommandSetValue";
    m_bytes = Detail::withCommandTags(className, functionName, [&] {
        const auto count = Kelm::readLittleEndian<std::uint32_t>(pos);
        if (count > std::uint32_t(INT32_MAX))
            throw KRException(QStringLiteral("A buffer cannot hold %1 bytes.").arg(count), __FILE__,
                              className, functionName, __LINE__);
        std::string bytes = Kelm::readBytes(pos, count);
        Kelm::readTerminator(pos, className, functionName);
        return bytes;
    });
}

void ValueBuffer::CommandSetValue::Execute()
{
    static_cast<ValueBuffer *>(GetValue())
        ->SetValue(m_bytes.data(), int(m_bytes.size()), GetSource());
}

void ValueBuffer::CommandSetValue::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    Kelm::appendLittleEndian(out, std::uint32_t(m_bytes.size()));
    out += m_bytes;
    out += ';';
}

Command *ValueBuffer::CommandSetValue::Clone() const { return new CommandSetValue(*this); }

} // namespace values
