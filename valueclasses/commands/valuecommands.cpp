#include "valueclasses/commands/valuecommands.h"

#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/commandfield_p.h"
#include "valueclasses/commands/commandtags.h"
#include "valueclasses/commands/streamformat.h"
#include "valueclasses/ivaluedescriptormap.h"

namespace values {

namespace {

TChangeCode readChangeCode(const char **pos, const char *emptyMessage, const char *className,
                           const char *functionName)
{
    const std::string_view field = commandField(*pos);
    if (field.empty())
        throw KRException(QString::fromLatin1(emptyMessage), __FILE__, className, functionName,
                          __LINE__);
    const int code = parseDigits(field, "Syntax error in TChangeCode: %1", className, functionName);
    skipCommandField(pos, field, className, functionName);
    return TChangeCode(code);
}

/// The one field of a command, and its end. Bytes that run out inside the field miss their end.
template <typename T>
T readField(const char **pos, int mode, const char *reason, const char *className,
            const char *functionName)
{
    const auto read = [&] {
        T value = StreamFormat<T>::FromStream(pos, mode);
        Kelm::readTerminator(pos, className, functionName);
        return value;
    };
    return Detail::withCommandTags(className, functionName, read, reason);
}

constexpr const char *kUnexpectedFormat = "Passed string has unexpected format";

} // namespace

ValueBase::CommandOnValue::CommandOnValue(int id, ValueBase *value, IObserver *source)
    : Command(id), m_value(value), m_source(source)
{
}

ValueBase::CommandOnValue::CommandOnValue(int id, ValueBase *value, const char **pos,
                                          IObserver *source)
    : CommandOnValue(id, value, source)
{
    skipCommandId(pos);
}

void ValueBase::CommandOnValue::AddCommandString(std::string &out, int /*mode*/) const
{
    appendDecimalField(out, GetCommandId());
}

Command *ValueBase::CommandOnValue::Clone() const { return new CommandOnValue(*this); }

void ValueBase::CommandOnValue::AddSemicolon(std::string &out, int mode)
{
    if (isTextMode(mode))
        out += ';';
}

void ValueBase::CommandOnValue::EatSemicolon(const char **pos, int mode)
{
    if (isTextMode(mode))
        Kelm::readTerminator(pos, "ValueBase", "EatSemicolon");
}

ValueBase::CommandHasChanged::CommandHasChanged(ValueBase *value, TChangeCode code,
                                                IObserver *source)
    : CommandOnValue(kId, value, source), m_code(code)
{
}

ValueBase::CommandHasChanged::CommandHasChanged(ValueBase *value, const char **pos,
                                                IObserver *source, int /*mode*/)
    : CommandOnValue(kId, value, pos, source),
      m_code(readChangeCode(
          pos, "There is no TChangeCode specified for received call on ValueBase::HasChanged()",
          "ValueBase::CommandHasChanged", "CommandHasChanged"))
{
}

void ValueBase::CommandHasChanged::Execute() { GetValue()->HasChanged(m_code, GetSource()); }

void ValueBase::CommandHasChanged::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    appendDecimalField(out, m_code);
}

Command *ValueBase::CommandHasChanged::Clone() const { return new CommandHasChanged(*this); }

ValueBase::CommandSetState::CommandSetState(ValueBase *value, TValueState state, IObserver *source)
    : CommandOnValue(kId, value, source), m_state(state)
{
}

ValueBase::CommandSetState::CommandSetState(ValueBase *value, const char **pos, IObserver *source,
                                            int mode)
    : CommandOnValue(kId, value, pos, source),
      m_state(TValueState(readField<int>(pos, mode, kUnexpectedFormat, "ValueBase::CommandSetState",
                                         "CommandSetState")))
{
}

void ValueBase::CommandSetState::Execute() { GetValue()->SetState(m_state, GetSource()); }

void ValueBase::CommandSetState::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<int>::Append(out, m_state, mode);
    out += ';';
}

Command *ValueBase::CommandSetState::Clone() const { return new CommandSetState(*this); }

ValueBase::CommandSetValueDescriptor::CommandSetValueDescriptor(ValueBase *value,
                                                                const ValueDescriptor *descriptor,
                                                                IObserver *source)
    : CommandOnValue(kId, value, source), m_descriptor(descriptor)
{
}

ValueBase::CommandSetValueDescriptor::CommandSetValueDescriptor(ValueBase *value, const char **pos,
                                                                IObserver *source, int mode)
    : CommandOnValue(kId, value, pos, source), m_descriptor(nullptr)
{
    const auto key =
        readField<QString>(pos, mode, kUnexpectedFormat, "ValueBase::CommandSetValueDescriptor",
                           "CommandSetValueDescriptor");
    if (const IValueDescriptorMap *known = IValueDescriptorMap::Instance();
        known != nullptr && !key.isEmpty())
        m_descriptor = known->Find(key);
}

void ValueBase::CommandSetValueDescriptor::Execute()
{
    GetValue()->SetValueDescriptor(m_descriptor);
}

void ValueBase::CommandSetValueDescriptor::AddCommandString(std::string &out, int mode) const
{
    const IValueDescriptorMap *known = IValueDescriptorMap::Instance();
    const QString key =
        m_descriptor != nullptr && known != nullptr ? known->KeyOf(*m_descriptor) : QString();
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<QString>::Append(out, key, mode);
    out += ';';
}

Command *ValueBase::CommandSetValueDescriptor::Clone() const
{
    return new CommandSetValueDescriptor(*this);
}

ValueBase::CommandStartTransaction::CommandStartTransaction(ValueBase *value, IObserver *source)
    : CommandOnValue(kId, value, source)
{
}

ValueBase::CommandStartTransaction::CommandStartTransaction(ValueBase *value, const char **pos,
                                                            IObserver *source, int /*mode*/)
    : CommandOnValue(kId, value, pos, source)
{
}

void ValueBase::CommandStartTransaction::Execute()
{
    static_cast<ISupportTransaction *>(GetValue())->StartTransaction(GetSource());
}

Command *ValueBase::CommandStartTransaction::Clone() const
{
    return new CommandStartTransaction(*this);
}

ValueBase::CommandEndTransaction::CommandEndTransaction(ValueBase *value, TChangeCode code,
                                                        IObserver *source, std::uint64_t bracket)
    : CommandOnValue(kId, value, source), m_code(code), m_bracket(bracket)
{
}

ValueBase::CommandEndTransaction::CommandEndTransaction(ValueBase *value, const char **pos,
                                                        IObserver *source, int /*mode*/)
    : CommandOnValue(kId, value, pos, source),
      m_code(readChangeCode(
          pos, "There is no TChangeCode specified for received call on ValueBase::EndTransaction()",
          "ValueBase::CommandEndTransaction", "CommandEndTransaction"))
{
}

void ValueBase::CommandEndTransaction::Execute()
{
    static_cast<ISupportTransaction *>(GetValue())->EndTransaction(m_code, GetSource());
}

void ValueBase::CommandEndTransaction::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    appendDecimalField(out, m_code);
}

Command *ValueBase::CommandEndTransaction::Clone() const
{
    return new CommandEndTransaction(*this);
}

ValueBase::CommandUpdateTimerTime::CommandUpdateTimerTime(ValueBase *value,
                                                          unsigned int milliseconds,
                                                          IObserver *source)
    : CommandOnValue(kId, value, source), m_milliseconds(milliseconds)
{
}

ValueBase::CommandUpdateTimerTime::CommandUpdateTimerTime(ValueBase *value, const char **pos,
                                                          IObserver *source, int mode)
    : CommandOnValue(kId, value, pos, source),
      m_milliseconds(
          unsigned(readField<int>(pos, mode, kUnexpectedFormat, "ValueBase::CommandUpdateTimerTime",
                                  "CommandUpdateTimerTime")))
{
}

void ValueBase::CommandUpdateTimerTime::Execute()
{
    GetValue()->SetUpdateTimerTime(m_milliseconds);
}

void ValueBase::CommandUpdateTimerTime::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<int>::Append(out, int(m_milliseconds), mode);
    out += ';';
}

Command *ValueBase::CommandUpdateTimerTime::Clone() const
{
    return new CommandUpdateTimerTime(*this);
}

ValueBase::CommandSetTranslationNamespace::CommandSetTranslationNamespace(ValueBase *value,
                                                                          std::string name,
                                                                          IObserver *source)
    : CommandOnValue(kId, value, source), m_name(std::move(name))
{
}

ValueBase::CommandSetTranslationNamespace::CommandSetTranslationNamespace(ValueBase *value,
                                                                          const char **pos,
                                                                          IObserver *source,
                                                                          int mode)
    : CommandOnValue(kId, value, pos, source),
      m_name(readField<std::string>(pos, mode, "Command string is not terminated with ';'",
                                    "ValueBase::CommandSetTranslationNamespace",
                                    "CommandSetTranslationNamespace"))
{
}

void ValueBase::CommandSetTranslationNamespace::Execute() { ExecuteOn(GetValue()); }

void ValueBase::CommandSetTranslationNamespace::ExecuteOn(ValueBase *value)
{
    value->storeTranslationNamespace(m_name, GetSource()); // it may hold a zero byte
}

void ValueBase::CommandSetTranslationNamespace::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<std::string>::Append(out, m_name, mode);
    out += ';';
}

Command *ValueBase::CommandSetTranslationNamespace::Clone() const
{
    return new CommandSetTranslationNamespace(*this);
}

} // namespace values
