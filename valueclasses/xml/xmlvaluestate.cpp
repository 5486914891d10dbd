#include "valueclasses/xml/xmlvaluestate.h"

#include "platform/base/krexception.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/itreeitem.h"
#include "valueclasses/kfactorvalue.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/xml/xmltext.h"

namespace values {

namespace {

using WithOffset = ValueNumericWithOffset<double>;
constexpr int kFirstContentId = 20;

/// Whether a command of an object state tells content: a file sets no state, timer or transaction.
bool isContent(int id)
{
    return id >= kFirstContentId || id == ValueBase::CommandSetTranslationNamespace::kId;
}

void readOffset(ValueBase &value, const XmlText &offset)
{
    if (auto *const number = dynamic_cast<WithOffset *>(&value); number != nullptr)
        if (offset.present)
            number->SetOffset(XmlTextForms::NumberOf(offset), nullptr);
}

void readTransducer(ValueBase &value, const XmlText &name)
{
    if (auto *const curve = dynamic_cast<ValueKFactor *>(&value); curve != nullptr && name.present)
        curve->SetTransducerName(XmlTextForms::TextOf(name), nullptr);
}

} // namespace

void XmlValueState::Write(ValueBase &value, XmlFieldSink &sink) const
{
    XmlValueBase::Write(value, sink);
    if (const auto *const number = dynamic_cast<const WithOffset *>(&value)) {
        const double offset = number->GetOffset();
        const std::string text = StreamFormat<double>::ToStream(offset, ModeText);
        sink.Text(u"Offset", QString::fromStdString(text), XmlTextForms::ExactNumber(offset, text));
    }
    if (const auto *const curve = dynamic_cast<const ValueKFactor *>(&value)) {
        const QString &name = curve->GetTransducerName();
        sink.Text(u"Transducer", name, XmlTextForms::ExactText(name));
    }
    WriteState(value, sink);
}

void XmlValueState::Check(ValueBase &value, const XmlFields &fields) const
{
    XmlValueBase::Check(value, fields);
    const XmlText state = fields.Find(u"State");
    if (!state.present)
        fail(value, QStringLiteral("the element \"State\" is missing"));
    try {
        XmlTextForms::NumberOf(fields.Find(u"Offset"));
        XmlTextForms::TextOf(fields.Find(u"Transducer"));
    } catch (const KRException &error) {
        fail(value, error.GetReason());
    }
    CheckState(value, state);
}

void XmlValueState::Read(ValueBase &value, const XmlFields &fields) const
{
    ReadDescriptor(value, fields); // a kind with the number 0 is as good as any here
    readOffset(value, fields.Find(u"Offset"));
    if (!fields.IsTargetGone())
        ReadState(value, fields.Find(u"State"), fields);
    if (!fields.IsTargetGone())
        readTransducer(value, fields.Find(u"Transducer"));
}

void XmlValueState::WriteState(ValueBase &value, XmlFieldSink &sink)
{
    sink.Text(
        u"State",
        XmlTextForms::Base64(value.GetObjectStateStringForTransmission(unsigned(ModeBinaryTagged))),
        {});
}

void XmlValueState::CheckState(ValueBase &value, const XmlText &state)
{
    const KeepLastDeletedObject keep; // the trial value comes and goes
    const std::unique_ptr<ValueBase> trial(
        ValueFactory::Instance().CreateValue(value.GetTypeName()));
    if (trial == nullptr)
        fail(value, QStringLiteral("values of the kind %1 can't be made").arg(value.GetTypeName()));
    try {
        std::vector<std::unique_ptr<KELM::ICommand>> commands;
        trial->SetCommandString(XmlTextForms::FromBase64(state.text), commands, nullptr,
                                ModeBinaryTagged);
        for (const auto &command : commands)
            if (isContent(command->GetCommandId()))
                command->Execute();
    } catch (const KRException &error) {
        fail(value, error.GetReason());
    } catch (const std::exception &error) {
        fail(value, QString::fromUtf8(error.what()));
    }
}

void XmlValueState::ReadState(ValueBase &value, const XmlText &state, const XmlFields &fields)
{
    std::vector<std::unique_ptr<KELM::ICommand>> commands;
    value.SetCommandString(XmlTextForms::FromBase64(state.text), commands, nullptr,
                           ModeBinaryTagged);
    for (const auto &command : commands) {
        if (fields.IsTargetGone())
            return;
        if (isContent(command->GetCommandId()))
            command->Execute();
    }
}

} // namespace values
