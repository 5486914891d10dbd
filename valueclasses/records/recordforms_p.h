#pragma once

#include "platform/base/bytes.h"
#include "valueclasses/records/record.h"

#include <QStringList>

#include <concepts>
#include <utility>
#include <vector>

/// The text and the image of a record, made from its Fields.
namespace values::Record {

/// The text of a record: `separator` between the fields and, when `closed`, behind the last one.
struct Layout {
    const char *name;
    char separator = '#';
    bool closed = false;
    char doubleForm = 'f'; ///< 'f' fixed, 'g' shortest; six digits
    int textField = -1;    ///< may hold separators; -1 is the only text of the record
};

[[noreturn]] void failNumber(const Layout &layout, const QString &field);
/// The fields of \a text, as many as \a count. Where \a textField is an index, that field takes the
/// separators that are too many: they are its own. \throws KRException
QStringList split(const QString &text, const Layout &layout, int count, int textField);

template <typename Field>
inline constexpr bool isText = std::same_as<Field, QString> || std::same_as<Field, std::string>;

template <typename Field>
QString print(const Field &field, char doubleForm)
{
    if constexpr (std::same_as<Field, QString>)
        return field;
    else if constexpr (std::same_as<Field, std::string>)
        return QString::fromStdString(field);
    else if constexpr (std::floating_point<Field>)
        return QString::number(double(field), doubleForm, 6);
    else if constexpr (std::same_as<Field, std::uint64_t>)
        return QString::number(qulonglong(field));
    else
        return QString::number(qlonglong(field));
}

template <typename Field>
Field parse(const QString &text, const Layout &layout)
{
    if constexpr (std::same_as<Field, QString>) {
        return text;
    } else if constexpr (std::same_as<Field, std::string>) {
        return text.toStdString();
    } else {
        bool isNumber = false;
        Field field{};
        if constexpr (std::floating_point<Field>) {
            field = Field(text.toDouble(&isNumber));
        } else if constexpr (std::same_as<Field, std::uint64_t>) {
            field = text.toULongLong(&isNumber);
        } else {
            const qlonglong number = text.toLongLong(&isNumber);
            field = Field(number);
            isNumber = isNumber && qlonglong(field) == number;
        }
        if (!isNumber)
            failNumber(layout, text);
        return field;
    }
}

/// The index of the only text among the fields, or -1.
template <typename... Fields>
constexpr int onlyText(const std::tuple<Fields &...> & /*fields*/)
{
    int index = -1, count = 0, i = 0;
    ((isText<std::remove_const_t<Fields>> ? (index = i, ++count) : 0, ++i), ...);
    return count == 1 ? index : -1;
}

template <typename T>
QString print(const T &record, const Layout &layout)
{
    QString text;
    std::apply(
        [&](const auto &...field) {
            ((text += print(field, layout.doubleForm) + QLatin1Char(layout.separator)), ...);
        },
        T::Fields(record));
    if (!layout.closed)
        text.chop(1);
    return text;
}

template <typename T>
T parseRecord(const QString &text, const Layout &layout)
{
    T record;
    const auto fields = T::Fields(record);
    constexpr int count = int(std::tuple_size_v<decltype(T::Fields(record))>);
    const int textField = layout.textField >= 0 ? layout.textField : onlyText(fields);
    const QStringList pieces = split(text, layout, count, textField);
    auto piece = pieces.begin();
    std::apply(
        [&](auto &...field) {
            ((field = parse<std::remove_reference_t<decltype(field)>>(*piece++, layout)), ...);
        },
        fields);
    return record;
}

void appendField(std::string &out, const QString &field);
void appendField(std::string &out, const std::string &field);
template <typename T>
requires requires(const T &record) { T::Fields(record); }
void appendField(std::string &out, const T &record);
template <Kelm::RawNumber Field>
void appendField(std::string &out, Field field)
{
    Kelm::appendLittleEndian(out, field);
}
template <typename Element>
void appendField(std::string &out, const std::vector<Element> &field)
{
    Kelm::appendLittleEndian(out, std::uint32_t(field.size()));
    for (const Element &element : field)
        appendField(out, element);
}
template <typename T>
requires requires(const T &record) { T::Fields(record); }
void appendField(std::string &out, const T &record)
{
    std::apply([&](const auto &...field) { (appendField(out, field), ...); }, T::Fields(record));
}

void readField(const char **cursor, QString &field);
void readField(const char **cursor, std::string &field);
template <Kelm::RawNumber Field>
void readField(const char **cursor, Field &field)
{
    field = Kelm::readLittleEndian<Field>(cursor);
}
template <typename Element>
void readField(const char **cursor, std::vector<Element> &field);
template <typename T>
requires requires(T &record) { T::Fields(record); }
void readField(const char **cursor, T &record)
{
    std::apply([&](auto &...field) { (readField(cursor, field), ...); }, T::Fields(record));
}
template <typename Element>
void readField(const char **cursor, std::vector<Element> &field)
{
    const auto count = Kelm::readLittleEndian<std::uint32_t>(cursor);
    Kelm::requireBytes(*cursor, count); // no element is shorter than a byte
    field.clear();
    for (std::uint32_t i = 0; i < count; ++i)
        readField(cursor, field.emplace_back());
}

template <typename T>
std::string image(const T &record)
{
    std::string out;
    appendField(out, record);
    return out;
}

template <typename T>
T fromImage(const char **cursor)
{
    T record;
    readField(cursor, record);
    return record;
}

/// An image and its ";"; false where that is missing.
template <typename T>
bool readItem(const char **cursor, T &record)
{
    record = fromImage<T>(cursor);
    if (Kelm::bytesLeft(*cursor) == 0 || **cursor != ';')
        return false;
    ++*cursor;
    return true;
}

} // namespace values::Record

/// Defines the image forms of a record.
#define SPECTREE_DEFINE_RECORD_IMAGE(T)                                                            \
    template <>                                                                                    \
    std::string Kelm::toStandardString<T>(const T &record)                                         \
    {                                                                                              \
        return values::Record::image(record);                                                      \
    }                                                                                              \
    template <>                                                                                    \
    T Kelm::fromCharStream<T>(const char **cursor)                                                 \
    {                                                                                              \
        return values::Record::fromImage<T>(cursor);                                               \
    }

/// Defines all forms of a record whose text is its fields in the given Layout.
#define SPECTREE_DEFINE_RECORD(T, FormatClass, ...)                                                \
    SPECTREE_DEFINE_RECORD_IMAGE(T)                                                                \
    QString FormatClass::GetString(const T &record)                                                \
    {                                                                                              \
        return values::Record::print(record, values::Record::Layout{__VA_ARGS__});                 \
    }                                                                                              \
    T FormatClass::GetValue(const QString &text)                                                   \
    {                                                                                              \
        return values::Record::parseRecord<T>(text, values::Record::Layout{__VA_ARGS__});          \
    }
