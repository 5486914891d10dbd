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

constexpr int kCurveId = CommandSetValue<KFactor>::kId;

/// The curve as a whole, so that observers are told once. \throws KRException.
KFactor curveOf(const KFactorPure &value, const XmlFields &fields)
{
    const KeepLastDeletedObject keep; // the trial value comes and goes
    KFactor curve = value.GetValue();
    KFactorPure trial;
    std::vector<std::unique_ptr<KELM::ICommand>> commands;
    trial.SetCommandString(XmlTextForms::FromBase64(fields.Find(u"State").text), commands, nullptr,
                           ModeBinaryTagged);
    for (const auto &command : commands)
        if (command->GetCommandId() == kCurveId) {
            command->Execute();
            const QString name = curve.GetTransducerName();
            curve = trial.GetValue();
            curve.SetTransducerName(name);
        }
    if (const XmlText name = fields.Find(u"Transducer"); name.present)
        curve.SetTransducerName(XmlTextForms::TextOf(name));
    if (const XmlText name = fields.Find(u"File"); name.present)
        curve.RestoreFileName(XmlTextForms::TextOf(name));
    if (const XmlText edits = fields.Find(u"Reduced"); edits.present)
        curve.RestoreEdits(XmlTextForms::FromBase64(edits.text));
    return curve;
}

void writeCurve(const KFactor &curve, XmlFieldSink &sink)
{
    const QString &name = curve.GetTransducerName(), &file = curve.GetFileName();
    sink.Text(u"Transducer", name, XmlTextForms::ExactText(name));
    if (!file.isEmpty())
        sink.Text(u"File", file, XmlTextForms::ExactText(file));
    if (const std::string edits = curve.GetEditsImage(); !edits.empty())
        sink.Text(u"Reduced", XmlTextForms::Base64(edits), {});
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
    if (const auto *const curve = dynamic_cast<const KFactorPure *>(&value))
        writeCurve(curve->GetValue(), sink);
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
    } catch (const KRException &error) {
        fail(value, error.GetReason());
    }
    CheckState(value, state);
    try {
        if (const auto *const curve = dynamic_cast<const KFactorPure *>(&value))
            curveOf(*curve, fields);
    } catch (const KRException &error) {
        fail(value, error.GetReason());
    }
}

void XmlValueState::Read(ValueBase &value, const XmlFields &fields) const
{
    ReadDescriptor(value, fields); // a kind with the number 0 is as good as any here
    readOffset(value, fields.Find(u"Offset"));
    if (fields.IsTargetGone())
        return;
    auto *const curve = dynamic_cast<KFactorPure *>(&value);
    ReadState(value, fields.Find(u"State"), fields, curve != nullptr ? kCurveId : 0);
    if (curve != nullptr && !fields.IsTargetGone())
        curve->SetValue(curveOf(*curve, fields), nullptr);
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

void XmlValueState::ReadState(ValueBase &value, const XmlText &state, const XmlFields &fields,
                              int except)
{
    std::vector<std::unique_ptr<KELM::ICommand>> commands;
    value.SetCommandString(XmlTextForms::FromBase64(state.text), commands, nullptr,
                           ModeBinaryTagged);
    for (const auto &command : commands) {
        if (fields.IsTargetGone())
            return;
        if (isContent(command->GetCommandId()) && command->GetCommandId() != except)
            command->Execute();
    }
}

} // namespace values
