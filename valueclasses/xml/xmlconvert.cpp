// A field of one scalar kind, read into another: a value may change its kind between versions.
#include "platform/base/krexception.h"
#include "valueclasses/xml/xmltext.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

namespace XmlTextForms {

namespace {

using values::ValueType;
using values::XmlText;

template <typename T>
using Limits = std::numeric_limits<T>;

/// The whole truth about the field, as a text.
QString textOf(ValueType from, const XmlText &field)
{
    if (from == values::VTYPE_ValueString)
        return TextOf(field);
    return field.exact.isEmpty() ? field.text : field.exact;
}

double numberOf(const QString &text)
{
    if (text == QLatin1String("true") || text == QLatin1String("false"))
        return text == QLatin1String("true") ? 1.0 : 0.0;
    return NumberOf({text, QString(), true});
}

/// The nearest whole number, where T has it.
template <typename T>
std::optional<T> wholeNumberOf(const QString &text)
{
    bool isWhole = false;
    const qlonglong whole = text.toLongLong(&isWhole); // a double doesn't hold all of them
    if (isWhole)
        return whole >= qlonglong(Limits<T>::min()) && whole <= qlonglong(Limits<T>::max())
                   ? std::optional(T(whole))
                   : std::nullopt;
    const double number = std::round(numberOf(text));
    if (number >= double(Limits<T>::min()) && number < std::ldexp(1.0, Limits<T>::digits))
        return T(number);
    return std::nullopt;
}

} // namespace

template <typename T>
T ConvertedFrom(ValueType from, const XmlText &field)
{
    const QString text = textOf(from, field);
    if constexpr (std::is_same_v<T, QString>) {
        return text;
    } else if constexpr (std::is_same_v<T, double>) {
        return numberOf(text);
    } else if constexpr (std::is_same_v<T, bool>) {
        return numberOf(text) != 0.0;
    } else {
        if (const std::optional<T> whole = wholeNumberOf<T>(text))
            return *whole;
        throw KRException(
            QStringLiteral("\"%1\" is out of the range of this kind.").arg(text.left(80)), __FILE__,
            "XmlTextForms", "Read", __LINE__);
    }
}

template <typename T>
T ConvertedLimit(ValueType from, const XmlText &field)
{
    if constexpr (std::is_integral_v<T>) {
        const QString text = textOf(from, field);
        bool isWhole = false;
        const qlonglong whole = text.toLongLong(&isWhole); // a double doesn't hold all of them
        if (isWhole)
            return T(std::clamp(whole, qlonglong(Limits<T>::min()), qlonglong(Limits<T>::max())));
        const double number = numberOf(text);
        if (number <= double(Limits<T>::min()))
            return Limits<T>::min();
        if (number >= double(Limits<T>::max()))
            return Limits<T>::max();
    }
    return ConvertedFrom<T>(from, field);
}

#define SPECTREE_INSTANTIATE(T)                                                                    \
    template SPECTREE_EXPORT T ConvertedFrom<T>(ValueType, const XmlText &);
SPECTREE_INSTANTIATE(bool)
SPECTREE_INSTANTIATE(int)
SPECTREE_INSTANTIATE(unsigned int)
SPECTREE_INSTANTIATE(std::int64_t)
SPECTREE_INSTANTIATE(double)
SPECTREE_INSTANTIATE(QString)
#undef SPECTREE_INSTANTIATE
template SPECTREE_EXPORT int ConvertedLimit<int>(ValueType, const XmlText &);
template SPECTREE_EXPORT std::int64_t ConvertedLimit<std::int64_t>(ValueType, const XmlText &);
template SPECTREE_EXPORT double ConvertedLimit<double>(ValueType, const XmlText &);

} // namespace XmlTextForms
