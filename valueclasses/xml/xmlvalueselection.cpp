#include "valueclasses/xml/xmlvalueselection.h"

#include "platform/base/krexception.h"
#include "valueclasses/valueselection.h"
#include "valueclasses/xml/xmltext.h"

namespace values {

namespace {

void writeText(QStringView tag, const QString &text, XmlFieldSink &sink)
{
    sink.Text(tag, text, XmlTextForms::ExactText(text));
}

void writeItem(const SelectionItem &item, XmlFieldSink &sink)
{
    sink.BeginGroup(u"SelectionItem");
    writeText(u"Name", item.GetName(), sink);
    const QString number = QStringLiteral("%1").arg(item.GetValue(), 0, 'f', -1);
    sink.Text(u"Value", number, XmlTextForms::ExactNumber(item.GetValue(), number.toStdString()));
    sink.Text(u"Key", QString::number(std::int32_t(item.GetKey())), {});
    sink.EndGroup();
}

std::unique_ptr<SelectionItem> itemOf(const XmlFields &fields)
{
    return std::make_unique<SelectionItem>(
        XmlTextForms::TextOf(fields.Find(u"Name")), XmlTextForms::NumberOf(fields.Find(u"Value")),
        Kelm::Long(XmlTextForms::WholeNumberOf<int>(fields.Find(u"Key"))));
}

} // namespace

bool XmlValueSelection::Fits(const ValueBase &value) const
{
    return dynamic_cast<const ValueSelection *>(&value) != nullptr;
}

void XmlValueSelection::Write(ValueBase &value, XmlFieldSink &sink) const
{
    XmlValueBase::Write(value, sink);
    const auto &selection = static_cast<const ValueSelection &>(value);
    const SelectionItem *const current = selection.GetCurrentItem();
    const QString name = selection.GetStringValue();
    writeText(u"CurrentSelection", name, sink);
    if (selection.GetItem(name) != current)
        sink.Text(u"CurrentIndex", QString::number(selection.GetCurrentIndex()), {});
    for (int i = 0; i < selection.GetItemCount(); ++i)
        writeItem(*selection.GetItemAt(i), sink);
}

void XmlValueSelection::Check(ValueBase &value, const XmlFields &fields) const
{
    XmlValueBase::Check(value, fields);
    try {
        XmlTextForms::TextOf(fields.Find(u"CurrentSelection"));
        XmlTextForms::WholeNumberOf<int>(fields.Find(u"CurrentIndex"));
        fields.ForEach(u"SelectionItem", [](const XmlFields &item) { itemOf(item); });
    } catch (const KRException &error) {
        fail(value, error.GetReason());
    }
}

void XmlValueSelection::Read(ValueBase &value, const XmlFields &fields) const
{
    XmlValueBase::Read(value, fields);
    auto &selection = static_cast<ValueSelection &>(value);
    selection.DeleteItems(nullptr);
    fields.ForEach(u"SelectionItem", [&](const XmlFields &item) {
        if (!fields.IsTargetGone())
            selection.AddItem(itemOf(item).release(), nullptr);
    });
    if (fields.IsTargetGone())
        return;
    const XmlText index = fields.Find(u"CurrentIndex");
    if (!index.present)
        selection.Select(XmlTextForms::TextOf(fields.Find(u"CurrentSelection")), nullptr);
    else if (const int at = XmlTextForms::WholeNumberOf<int>(index); at >= 0)
        selection.SelectIndex(Kelm::Long(at), nullptr);
}

} // namespace values
