#include "valueclasses/commands/streamformat.h"

#include "platform/base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace values {

namespace {

/// The text of a field, in place; the cursor is left on its ";".
std::string_view readText(const char **pos)
{
    const char *const begin = *pos;
    *pos = Kelm::findByte(begin, ';');
    return {begin, std::size_t(*pos - begin)};
}

template <typename T>
concept Whole = std::integral<T> || std::same_as<T, Kelm::Long>;

template <Whole T>
T numberFrom(const QString &text)
{
    if constexpr (std::same_as<T, std::uint64_t>) {
        return text.toULongLong();
    } else {
        using Integer = std::conditional_t<std::same_as<T, char>, signed char, T>;
        using Number = std::conditional_t<std::same_as<T, Kelm::Long>, int, Integer>;
        const qlonglong number = text.toLongLong();
        return std::in_range<Number>(number) ? T(Number(number)) : T(0);
    }
}

/// Digits are read in place; what else QString takes for a number goes the long way.
template <Whole T>
T numberFrom(std::string_view text)
{
    if constexpr (sizeof(T) >= 4) {
        using Number = std::conditional_t<std::same_as<T, Kelm::Long>, int, T>;
        Number number{};
        const char *const end = text.data() + text.size();
        const auto result = std::from_chars(text.data(), end, number);
        if (result.ec == std::errc() && result.ptr == end)
            return number;
    }
    return numberFrom<T>(QString::fromLatin1(text.data(), int(text.size())));
}

template <std::floating_point T>
T numberFrom(std::string_view text)
{
    const auto isPlain = [](char c) { return (c >= '0' && c <= '9') || c == '.' || c == '-'; };
    double number = 0.0;
    const char *const end = text.data() + text.size();
    const auto result = std::all_of(text.begin(), text.end(), isPlain)
                            ? std::from_chars(text.data(), end, number)
                            : std::from_chars_result{nullptr, std::errc::invalid_argument};
    if (result.ec == std::errc() && result.ptr == end)
        return T(number);
    return FormatFloat<T>::GetValue(QString::fromLatin1(text.data(), int(text.size())));
}

void appendText(std::string &out, double number)
{
    // The longest double has 309 digits before its point.
    char digits[std::numeric_limits<double>::max_exponent10 + 16];
    if (number == 0.0)
        number = 0.0; // QString prints no sign for a negative zero
    if (std::isnan(number)) {
        out += "nan"; // nor for what is no number
        return;
    }
    // QString rounds halves away from zero, to_chars to even. Halves at the sixth decimal are the
    // odd multiples of 1/128.
    const double scaled = std::fabs(number) * 128;
    const auto whole = scaled < 0x1p53 ? std::int64_t(scaled) : 0;
    if (whole % 2 != 0 && double(whole) == scaled) {
        out += QString::number(number, 'f', 6).toStdString();
        return;
    }
    const auto end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 6).ptr;
    out.append(digits, end);
}

} // namespace

QString Format::ReadToken(const char **pos)
{
    const std::string_view text = readText(pos);
    return QString::fromLatin1(text.data(), int(text.size()));
}

template <typename T>
QString FormatInt<T>::GetString(const T &value)
{
    if constexpr (std::same_as<T, Kelm::Long>)
        return QStringLiteral("%1").arg(std::int32_t(value));
    else
        return QStringLiteral("%1").arg(value);
}

template <typename T>
T FormatInt<T>::GetValue(const QString &text)
{
    return numberFrom<T>(text);
}

template <typename T>
QString FormatInt64<T>::GetString(const T &value)
{
    return QStringLiteral("%1").arg(value);
}

template <typename T>
T FormatInt64<T>::GetValue(const QString &text)
{
    return numberFrom<T>(text);
}

template <typename T>
QString FormatBool<T>::GetString(const T &value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

template <typename T>
T FormatBool<T>::GetValue(const QString &text)
{
    return text == QLatin1String("true");
}

template <typename T>
QString FormatFloat<T>::GetString(const T &value)
{
    return QStringLiteral("%1").arg(double(value), 0, 'f', -1);
}

template <typename T>
T FormatFloat<T>::GetValue(const QString &text)
{
    return T(text.toDouble());
}

template <typename T>
QString FormatCString<T>::GetString(const T &value)
{
    return QString::fromStdString(value);
}

template <typename T>
T FormatCString<T>::GetValue(const QString &text)
{
    return text.toStdString();
}

template <typename T>
QString FormatWString<T>::GetString(const T &value)
{
    return QString::fromStdWString(value);
}

template <typename T>
T FormatWString<T>::GetValue(const QString &text)
{
    return text.toStdWString();
}

template <typename T>
QString FormatString<T>::GetString(const T &value)
{
    return value;
}

template <typename T>
T FormatString<T>::GetValue(const QString &text)
{
    return text;
}

namespace {

/// How the fields of one type are read and written; numbers are the rule.
template <typename T>
struct Codec {
    static T readText(const char **pos) { return numberFrom<T>(values::readText(pos)); }
    static T readBinary(const char **pos, int /*mode*/) { return Kelm::readLittleEndian<T>(pos); }
    static void appendText(std::string &out, const T &value)
    {
        if constexpr (std::floating_point<T>)
            values::appendText(out, value);
        else if constexpr (sizeof(T) < 2)
            out += FormatInt<T>::GetString(value).toStdString();
        else
            out += std::to_string(value);
    }
    static void appendBinary(std::string &out, const T &value, int /*mode*/)
    {
        Kelm::appendLittleEndian(out, value);
    }
};

template <>
struct Codec<bool> {
    static bool readText(const char **pos) { return values::readText(pos) == "true"; }
    static bool readBinary(const char **pos, int /*mode*/)
    {
        return Kelm::readLittleEndian<bool>(pos);
    }
    static void appendText(std::string &out, bool value) { out += value ? "true" : "false"; }
    static void appendBinary(std::string &out, bool value, int /*mode*/)
    {
        Kelm::appendLittleEndian(out, value);
    }
};

template <>
struct Codec<std::string> {
    static std::string readText(const char **pos) { return Format::ReadToken(pos).toStdString(); }
    static std::string readBinary(const char **pos, int /*mode*/)
    {
        const auto count = Kelm::readLittleEndian<std::uint32_t>(pos);
        return Kelm::readBytes(pos, count);
    }
    static void appendText(std::string &out, const std::string &value) { out += value; }
    static void appendBinary(std::string &out, const std::string &value, int /*mode*/)
    {
        Kelm::appendLittleEndian(out, std::uint32_t(value.size()));
        out += value;
    }
};

/// The binary form never leaves the process: a count and that many wide characters.
template <>
struct Codec<std::wstring> {
    static std::wstring readText(const char **pos) { return Format::ReadToken(pos).toStdWString(); }
    static std::wstring readBinary(const char **pos, int /*mode*/)
    {
        const auto count = Kelm::readLittleEndian<std::uint32_t>(pos);
        Kelm::requireBytes(*pos, count, sizeof(std::uint32_t));
        std::wstring text(count, L'\0');
        for (wchar_t &c : text)
            c = wchar_t(Kelm::readLittleEndian<std::uint32_t>(pos));
        return text;
    }
    static void appendText(std::string &out, const std::wstring &value)
    {
        out += QString::fromStdWString(value).toStdString();
    }
    static void appendBinary(std::string &out, const std::wstring &value, int /*mode*/)
    {
        Kelm::appendLittleEndian(out, std::uint32_t(value.size()));
        for (const wchar_t c : value)
            Kelm::appendLittleEndian(out, std::uint32_t(c));
    }
};

/// Without tags the count is that of the characters, though UTF-8 follows: a reader falls short of
/// a text that isn't ASCII. That is the established form.
template <>
struct Codec<QString> {
    static constexpr char kAscii = '0', kUtf16 = '1';

    static QString readText(const char **pos) { return Format::ReadToken(pos); }

    static QString readBinary(const char **pos, int mode)
    {
        const auto count = Kelm::readLittleEndian<std::uint32_t>(pos);
        if (!isTaggedMode(mode))
            return readLatin1(pos, count);
        const char mark = Kelm::readLittleEndian<char>(pos);
        if (mark == kAscii)
            return readLatin1(pos, count);
        if (mark == kUtf16)
            return readUtf16(pos, count);
        return readBinary(pos, ModeBinary);
    }

    static void appendText(std::string &out, const QString &value) { out += value.toStdString(); }

    static void appendBinary(std::string &out, const QString &value, int mode)
    {
        const bool ascii = !isTaggedMode(mode) || Kelm::isAsciiString(value);
        Kelm::appendLittleEndian(out, std::uint32_t(ascii ? value.size() : 2 * value.size()));
        if (isTaggedMode(mode))
            out += ascii ? kAscii : kUtf16;
        if (ascii)
            out += value.toStdString();
        else
            for (const QChar c : value)
                Kelm::appendLittleEndian(out, std::uint16_t(c.unicode()));
    }

private:
    static QString readLatin1(const char **pos, std::uint32_t count)
    {
        Kelm::requireBytes(*pos, count);
        const QString text = QString::fromLatin1(*pos, int(count));
        *pos += count;
        return text;
    }

    static QString readUtf16(const char **pos, std::uint32_t bytes)
    {
        Kelm::requireBytes(*pos, bytes);
        const char *const end = *pos + bytes;
        QString text(int(bytes / 2), QChar());
        for (QChar &c : text)
            c = QChar(Kelm::readLittleEndian<std::uint16_t>(pos));
        *pos = end; // half a unit more belongs to the field, too
        return text;
    }
};

} // namespace

template <typename T, typename F>
T StreamFormat<T, F>::FromStream(const char **pos, int mode)
{
    return isTextMode(mode) ? Codec<T>::readText(pos) : Codec<T>::readBinary(pos, mode);
}

template <typename T, typename F>
void StreamFormat<T, F>::Append(std::string &out, const T &value, int mode)
{
    if (isTextMode(mode))
        Codec<T>::appendText(out, value);
    else
        Codec<T>::appendBinary(out, value, mode);
}

#define SPECTREE_INSTANTIATE(T, FormatClass)                                                       \
    template class FormatClass<T>;                                                                 \
    template class StreamFormat<T, FormatClass<T>>;
SPECTREE_FOR_EACH_FIELD_TYPE(SPECTREE_INSTANTIATE)

} // namespace values
