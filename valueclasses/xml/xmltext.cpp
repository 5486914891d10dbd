#include "valueclasses/xml/xmltext.h"

#include "platform/base/krexception.h"
#include "platform/base/xmlwriter.h"

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace XmlTextForms {

namespace {

using values::XmlText;

constexpr int kEscapeLength = 7; // _xHHHH_

bool isLetter(QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_'; }

bool isPlain(QChar c) { return isLetter(c) || (c >= u'0' && c <= u'9') || c == u'-' || c == u'.'; }

/// The character of the escape that begins \a text, if one does.
std::optional<QChar> escapeAt(QStringView text)
{
    if (text.size() < kEscapeLength || text[0] != u'_' || text[1] != u'x' ||
        text[kEscapeLength - 1] != u'_')
        return std::nullopt;
    ushort number = 0;
    for (const QChar c : text.mid(2, 4)) {
        const bool digit = c >= u'0' && c <= u'9';
        if (!digit && (c < u'A' || c > u'F'))
            return std::nullopt;
        number = ushort(number * 16 + (digit ? c.unicode() - u'0' : c.unicode() - u'A' + 10));
    }
    return QChar(number);
}

[[noreturn]] void fail(const QString &reason)
{
    throw KRException(reason, __FILE__, "XmlTextForms", "Read", __LINE__);
}

} // namespace

bool IsBlank(QStringView text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; });
}

QString EncodeName(const QString &name)
{
    const QStringView view(name);
    const auto stays = [&](qsizetype i) {
        if (view[i] == u'_')
            return !escapeAt(view.mid(i)).has_value();
        return i == 0 ? isLetter(view[i]) : isPlain(view[i]);
    };
    qsizetype first = 0;
    while (first < view.size() && stays(first))
        ++first;
    if (first == view.size())
        return name;
    QString out = name.left(int(first));
    for (qsizetype i = first; i < view.size(); ++i) {
        if (stays(i))
            out += view[i];
        else
            out += QStringLiteral("_x%1_").arg(
                QString::number(view[i].unicode(), 16).toUpper().rightJustified(4, QChar('0')));
    }
    return out;
}

QString DecodeName(QStringView element)
{
    QString out;
    out.reserve(int(element.size()));
    while (!element.isEmpty()) {
        const auto c = escapeAt(element);
        out += c ? *c : element.front();
        element = element.mid(c ? kEscapeLength : 1);
    }
    return out;
}

QString ExactText(const QString &text)
{
    // What Unicode calls a blank is one for Qt's DOM, too.
    bool kept = text.isEmpty() ||
                !std::all_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
    for (int i = 0; kept && i < text.size(); ++i)
        kept = text[i] != u'\r' && Kelm::isXmlCharacter(text, i);
    if (kept)
        return {};
    std::string bytes(std::size_t(text.size()) * 2, '\0');
    qToLittleEndian<ushort>(text.utf16(), text.size(), bytes.data());
    return Base64(bytes);
}

QString TextOf(const XmlText &field)
{
    if (field.exact.isEmpty())
        return field.text;
    const std::string bytes = FromBase64(field.exact);
    if (bytes.size() % 2 != 0)
        fail(QStringLiteral("The exact form of a text ends inside a character."));
    QString text(int(bytes.size() / 2), Qt::Uninitialized);
    qFromLittleEndian<ushort>(bytes.data(), text.size(), text.data());
    return text;
}

QString Base64(const std::string &bytes)
{
    constexpr std::size_t kMostBytes = std::size_t(1) << 29;
    if (bytes.size() > kMostBytes)
        fail(QStringLiteral("%1 bytes are more than a document can hold.").arg(bytes.size()));
    return QString::fromLatin1(QByteArray::fromRawData(bytes.data(), int(bytes.size())).toBase64());
}

std::string FromBase64(const QString &text)
{
    const auto result = QByteArray::fromBase64Encoding(
        text.toLatin1(), QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (result.decodingStatus != QByteArray::Base64DecodingStatus::Ok)
        fail(QStringLiteral("\"%1\" is not base64.").arg(text.left(80)));
    return result.decoded.toStdString();
}

QString ExactNumber(double number, const std::string &printed)
{
    double read = 0.0;
    std::from_chars(printed.data(), printed.data() + printed.size(), read);
    if (read == number || (number != number && read != read))
        return {};
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return QString::fromLatin1(digits, int(end - digits));
}

double NumberOf(const XmlText &field)
{
    const QString &text = field.exact.isEmpty() ? field.text : field.exact;
    if (text.isEmpty())
        return 0.0;
    const QByteArray digits = text.toLatin1();
    double number = 0.0;
    const auto result = std::from_chars(digits.begin(), digits.end(), number);
    if (result.ec == std::errc() && result.ptr == digits.end())
        return number;
    bool ok = false;
    number = text.toDouble(&ok); // takes blanks and a plus sign, too
    if (!ok)
        fail(QStringLiteral("\"%1\" is not a number.").arg(text.left(80)));
    return number;
}

template <std::integral T>
T WholeNumberOf(const XmlText &field)
{
    bool ok = true;
    const qlonglong number = field.text.isEmpty() ? 0 : field.text.toLongLong(&ok);
    if (!ok || number < qlonglong(std::numeric_limits<T>::min()) ||
        number > qlonglong(std::numeric_limits<T>::max()))
        fail(QStringLiteral("\"%1\" is not a whole number of this kind.").arg(field.text.left(80)));
    return T(number);
}

template int WholeNumberOf<int>(const XmlText &);
template unsigned WholeNumberOf<unsigned>(const XmlText &);
template std::int64_t WholeNumberOf<std::int64_t>(const XmlText &);

} // namespace XmlTextForms
