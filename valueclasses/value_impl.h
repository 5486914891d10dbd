// The bodies of value.h, for the file that instantiates them.
#pragma once

#include "platform/base/bytes.h"
#include "valueclasses/commands/commandtags.h"
#include "valueclasses/value.h"

#include <charconv>

namespace values {

/// Moves the commands that a later one makes superfluous out of \a commands, one pass. The first
/// one stays unless its neighbour says otherwise.
SPECTREE_EXPORT void dropSuperfluousCommands(CommandList &commands);

namespace Detail {
/// Whether the binary form of a field is the raw image of its number.
template <typename T, typename S>
inline constexpr bool isRawField =
    Kelm::RawNumber<T> &&std::is_same_v<S, StreamFormat<T, DefaultFormat<T>>>;

/// Id, field and end of a command with one field; a raw number in one piece.
template <typename S, typename T>
void appendCommand(std::string &out, int id, const T &value, int mode)
{
    char bytes[32];
    char *end = bytes;
    if (id >= 10 && id < 100) { // nearly every id
        *end++ = char('0' + id / 10);
        *end++ = char('0' + id % 10);
    } else {
        end = std::to_chars(bytes, bytes + 12, id).ptr;
    }
    *end++ = ';';
    if constexpr (isRawField<T, S>) {
        if (!isTextMode(mode)) {
            end = Kelm::putLittleEndian(end, value);
            *end++ = ';';
            out.append(bytes, end);
            return;
        }
    }
    out.append(bytes, end);
    AppendField<S>(out, value, mode);
    out += ';';
}

/// The field and the end of such a command.
template <typename S, typename T>
T readField(const char **pos, int mode, const char *functionName)
{
    if constexpr (isRawField<T, S> && sizeof(T) > 1) {
        if (!isTextMode(mode) && Kelm::bytesLeft(*pos) > sizeof(T) && (*pos)[sizeof(T)] == ';') {
            typename Kelm::Detail::UintOf<sizeof(T)>::type image;
            std::memcpy(&image, *pos, sizeof image);
            if constexpr (std::endian::native == std::endian::big)
                image = Kelm::Detail::swapBytes(image);
            *pos += sizeof(T) + 1;
            return std::bit_cast<T>(image);
        }
    }
    constexpr const char *className = "Value::CommandSetValue";
    const auto read = [&] {
        T value = S::FromStream(pos, mode);
        Kelm::readTerminator(pos, className, functionName);
        return value;
    };
    // A record has errors of its own; of any other field only the end can be missing.
    if constexpr (std::is_void_v<DefaultFormat<T>>)
        return read();
    else
        return withCommandTags(className, functionName, read);
}
} // namespace Detail

template <typename T, typename F, typename S>
Value<T, F, S>::Value(QString name, TValueState state) : ValueBase(std::move(name), state)
{
}

template <typename T, typename F, typename S>
Value<T, F, S>::Value(QString name, T value, TValueState state)
    : ValueBase(std::move(name), state), m_value(std::move(value))
{
}

template <typename T, typename F, typename S>
void Value<T, F, S>::SetValue(T value, IObserver *source)
{
    ChangeField(m_value, std::move(value), CC_VALUE, source,
                [this](const T &state, IObserver *on, CommandUse) {
                    return new CommandSetValue<T, F, S>(this, state, on);
                });
}

template <typename T, typename F, typename S>
void Value<T, F, S>::SetStringValue(QString text, IObserver *source)
{
    SetValue(F::GetValue(text), source);
}

template <typename T, typename F, typename S>
QString Value<T, F, S>::GetStringValue() const
{
    return F::GetString(GetValue());
}

template <typename T, typename F, typename S>
void Value<T, F, S>::Assign(const ValueBase &other)
{
    const auto &same = CastForAssign<Value>(other);
    if (PostAssignIfForeign(same))
        return;
    m_value = same.m_value;
    ValueBase::operator=(other); // last, for it may tell somebody who deletes this value
}

template <typename T, typename F, typename S>
bool Value<T, F, S>::Compare(const ValueBase *other) const
{
    const auto *same = dynamic_cast<const Value *>(other);
    return same != nullptr &&
           (same == this || (ValueBase::Compare(other) && m_value == same->m_value));
}

template <typename T, typename F, typename S>
void Value<T, F, S>::OptimizeCommandList(CommandList &commands)
{
    ValueBase::OptimizeCommandList(commands);
    dropSuperfluousCommands(commands);
}

template <typename T, typename F, typename S>
void Value<T, F, S>::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandSetValue<T, F, S>(this, m_value, nullptr).AddCommandString(out, int(mode));
}

template <typename T, typename F, typename S>
Command *Value<T, F, S>::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    if (id == CommandSetValue<T, F, S>::kId)
        return new CommandSetValue<T, F, S>(this, pos, source, mode);
    return ValueBase::CreateNextCommand(id, pos, source, mode);
}

template <typename T, typename F, typename S>
CommandSetValue<T, F, S>::CommandSetValue(Value<T, F, S> *value, T newValue, IObserver *source)
    : CommandOnValue(kId, value, source), m_newValue(std::move(newValue))
{
}

template <typename T, typename F, typename S>
CommandSetValue<T, F, S>::CommandSetValue(Value<T, F, S> *value, const char **pos,
                                          IObserver *source, int mode)
    : CommandOnValue(kId, value, pos, source),
      m_newValue(Detail::readField<S, T>(pos, mode, "CommandSetValue"))
{
}

template <typename T, typename F, typename S>
void CommandSetValue<T, F, S>::Execute()
{
    static_cast<Value<T, F, S> *>(GetValue())->SetValue(m_newValue, GetSource());
}

template <typename T, typename F, typename S>
void CommandSetValue<T, F, S>::AddCommandString(std::string &out, int mode) const
{
    Detail::appendCommand<S>(out, kId, m_newValue, mode);
}

template <typename T, typename F, typename S>
Command *CommandSetValue<T, F, S>::Clone() const
{
    return new CommandSetValue(*this);
}

} // namespace values
