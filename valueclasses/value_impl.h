// The bodies of value.h, for the file that instantiates them.
#pragma once

#include "platform/base/bytes.h"
#include "valueclasses/value.h"

namespace values {

/// Moves the commands that a later one makes superfluous out of \a commands, one pass. The first
/// one stays unless its neighbour says otherwise.
SPECTREE_EXPORT void dropSuperfluousCommands(CommandList &commands);

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
    ValueBase::operator=(other);
    m_value = same.m_value;
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
    : CommandOnValue(kId, value, pos, source), m_newValue(S::FromStream(pos, mode))
{
    Kelm::readTerminator(pos, "Value::CommandSetValue", "CommandSetValue");
}

template <typename T, typename F, typename S>
void CommandSetValue<T, F, S>::Execute()
{
    static_cast<Value<T, F, S> *>(GetValue())->SetValue(m_newValue, GetSource());
}

template <typename T, typename F, typename S>
void CommandSetValue<T, F, S>::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    AppendField<S>(out, m_newValue, mode);
    out += ';';
}

template <typename T, typename F, typename S>
Command *CommandSetValue<T, F, S>::Clone() const
{
    return new CommandSetValue(*this);
}

} // namespace values
