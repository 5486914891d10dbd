#include "valueclasses/xml/xmlvalue.h"

#include "platform/base/krexception.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/xml/xmltext.h"
#include "valueclasses/xml/xmlvaluestate.h"

namespace values {

template <typename T, typename F>
bool XmlValue<T, F>::ReadsType(ValueType type) const
{
    return type == VTYPE_ValueUInt ||
           (type >= VTYPE_ValueBoolean && type <= VTYPE_ValueNumericFloat);
}

template <typename T, typename F>
void XmlValue<T, F>::writeField(QStringView tag, const T &value, XmlFieldSink &sink)
{
    if constexpr (std::same_as<T, QString>) {
        sink.Text(tag, value, XmlTextForms::ExactText(value));
    } else if constexpr (std::same_as<T, bool>) {
        sink.Text(tag, F::GetString(value), {});
    } else {
        const std::string text = StreamFormat<T, F>::ToStream(value, ModeText);
        QString exact;
        if constexpr (std::same_as<T, double>)
            exact = XmlTextForms::ExactNumber(value, text);
        sink.Text(tag, QString::fromLatin1(text.data(), int(text.size())), exact);
    }
}

template <typename T, typename F>
T XmlValue<T, F>::fieldOf(const XmlText &field)
{
    if constexpr (std::same_as<T, QString>) {
        return XmlTextForms::TextOf(field);
    } else if constexpr (std::same_as<T, double>) {
        return XmlTextForms::NumberOf(field);
    } else if constexpr (std::same_as<T, bool>) {
        if (field.text != QLatin1String("true") && field.text != QLatin1String("false") &&
            !field.text.isEmpty())
            throw KRException(
                QStringLiteral("\"%1\" is neither true nor false.").arg(field.text.left(80)),
                __FILE__, "XmlValue", "FromXml", __LINE__);
        return field.text == QLatin1String("true");
    } else {
        return XmlTextForms::WholeNumberOf<T>(field);
    }
}

template <typename T, typename F>
bool XmlValue<T, F>::Fits(const ValueBase &value) const
{
    return dynamic_cast<const Value<T, F> *>(&value) != nullptr;
}

template <typename T, typename F>
bool XmlValue<T, F>::hasState(const ValueBase &value, const XmlFields &fields)
{
    return fields.Find(u"State").present && !XmlValueBase::OtherKind(value, fields);
}

template <typename T, typename F>
void XmlValue<T, F>::Write(ValueBase &value, XmlFieldSink &sink) const
{
    XmlValueBase::Write(value, sink);
    const T held = static_cast<Value<T, F> &>(value).GetValue();
    if constexpr (std::same_as<T, QString>)
        if (held.size() > XmlTextForms::kLongestExact / 8 * 3 && // 3 characters make 8
            XmlTextForms::ExactText(held).size() > XmlTextForms::kLongestExact)
            return XmlValueState::WriteState(value, sink);
    writeField(u"Value", held, sink);
}

template <typename T, typename F>
void XmlValue<T, F>::Check(ValueBase &value, const XmlFields &fields) const
{
    XmlValueBase::Check(value, fields);
    try {
        const XmlText field = fields.Find(u"Value");
        if (const auto kind = XmlValueBase::OtherKind(value, fields))
            XmlTextForms::ConvertedFrom<T>(*kind, field);
        else
            fieldOf(field);
    } catch (const KRException &error) {
        XmlValueBase::fail(value, error.GetReason());
    }
    if constexpr (std::same_as<T, QString>)
        if (hasState(value, fields))
            XmlValueState::CheckState(value, fields.Find(u"State"));
}

template <typename T, typename F>
void XmlValue<T, F>::Read(ValueBase &value, const XmlFields &fields) const
{
    XmlValueBase::Read(value, fields);
    const XmlText field = fields.Find(u"Value");
    auto &scalar = static_cast<Value<T, F> &>(value);
    if constexpr (std::same_as<T, QString>)
        if (!field.present && hasState(value, fields))
            return XmlValueState::ReadState(value, fields.Find(u"State"), fields);
    if (const auto kind = XmlValueBase::OtherKind(value, fields))
        scalar.SetValue(XmlTextForms::ConvertedFrom<T>(*kind, field), nullptr);
    else if (field.exact.isEmpty() && !std::same_as<T, double>) // which is read as it was checked
        scalar.SetStringValue(field.text, nullptr);
    else
        scalar.SetValue(fieldOf(field), nullptr);
}

template <typename T, typename F>
bool XmlValueNumeric<T, F>::Fits(const ValueBase &value) const
{
    return dynamic_cast<const ValueNumeric<T, F> *>(&value) != nullptr;
}

template <typename T, typename F>
void XmlValueNumeric<T, F>::Write(ValueBase &value, XmlFieldSink &sink) const
{
    XmlValue<T, F>::Write(value, sink);
    const auto &number = static_cast<const ValueNumeric<T, F> &>(value);
    this->writeField(u"Max", number.GetMax(), sink);
    this->writeField(u"Min", number.GetMin(), sink);
    this->writeField(u"Step", number.GetStep(), sink);
    const T held = number.GetValue();
    if (!(held >= number.GetMin() && held <= number.GetMax()))
        XmlValueState::WriteState(value, sink);
}

template <typename T, typename F>
T XmlValueNumeric<T, F>::limitOf(const std::optional<ValueType> &otherKind, const XmlText &field)
{
    return otherKind ? XmlTextForms::ConvertedLimit<T>(*otherKind, field)
                     : XmlValue<T, F>::fieldOf(field);
}

template <typename T, typename F>
void XmlValueNumeric<T, F>::Check(ValueBase &value, const XmlFields &fields) const
{
    XmlValue<T, F>::Check(value, fields);
    const auto kind = XmlValueBase::OtherKind(value, fields);
    for (const QStringView tag : {QStringView(u"Max"), QStringView(u"Min"), QStringView(u"Step")}) {
        try {
            limitOf(kind, fields.Find(tag));
        } catch (const KRException &error) {
            XmlValueBase::fail(value,
                               QStringLiteral("%1: %2").arg(tag.toString(), error.GetReason()));
        }
    }
    if (this->hasState(value, fields))
        XmlValueState::CheckState(value, fields.Find(u"State"));
}

template <typename T, typename F>
void XmlValueNumeric<T, F>::Read(ValueBase &value, const XmlFields &fields) const
{
    using Number = ValueNumeric<T, F>;
    auto &number = static_cast<Number &>(value);
    const auto kind = XmlValueBase::OtherKind(value, fields);
    const auto apply = [&](QStringView tag, void (Number::*set)(T, IObserver *)) {
        const XmlText field = fields.IsTargetGone() ? XmlText() : fields.Find(tag);
        if (field.present)
            (number.*set)(limitOf(kind, field), nullptr);
    };
    apply(u"Max", &Number::SetMax);
    apply(u"Min", &Number::SetMin);
    apply(u"Step", &Number::SetStep);
    if (fields.IsTargetGone())
        return;
    XmlValue<T, F>::Read(value, fields);
    if (!fields.IsTargetGone() && this->hasState(value, fields))
        XmlValueState::ReadState(value, fields.Find(u"State"), fields);
}

#define SPECTREE_INSTANTIATE(T) template class XmlValue<T>;
SPECTREE_FOR_EACH_XML_SCALAR(SPECTREE_INSTANTIATE)
#undef SPECTREE_INSTANTIATE
#define SPECTREE_INSTANTIATE(T) template class XmlValueNumeric<T>;
SPECTREE_FOR_EACH_XML_NUMERIC(SPECTREE_INSTANTIATE)
#undef SPECTREE_INSTANTIATE

} // namespace values
