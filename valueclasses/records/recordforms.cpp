#include "platform/base/krexception.h"
#include "valueclasses/records/recordforms_p.h"

namespace values {

void Record::failNumber(const Layout &layout, const QString &field)
{
    throw KRException(QStringLiteral("\"%1\" is not a number that a %2 can hold")
                          .arg(field, QString::fromLatin1(layout.name)),
                      __FILE__, layout.name, "GetValue", __LINE__);
}

QStringList Record::split(const QString &text, const Layout &layout, int count, int textField)
{
    const QChar separator = QLatin1Char(layout.separator);
    QStringList fields = text.split(separator);
    if (layout.closed && fields.size() > 1 && fields.last().isEmpty())
        fields.removeLast();
    else if (layout.closed)
        fields.clear(); // cut off inside its last field
    const int surplus = fields.size() - count;
    if (textField >= 0 && surplus > 0) {
        const QString joined = fields.mid(textField, surplus + 1).join(separator);
        fields = fields.mid(0, textField) << joined << fields.mid(textField + surplus + 1);
    }
    if (fields.size() != count)
        throw KRException(
            QStringLiteral("The text of a %1 has not %2 fields: \"%3\"")
                .arg(QString::fromLatin1(layout.name), QString::number(count), text.left(200)),
            __FILE__, layout.name, "GetValue", __LINE__);
    return fields;
}

void Record::appendField(std::string &out, const QString &field)
{
    Kelm::appendLittleEndian(out, std::uint32_t(field.size()));
    for (const QChar c : field)
        Kelm::appendLittleEndian(out, std::uint16_t(c.unicode()));
}

void Record::appendField(std::string &out, const std::string &field)
{
    Kelm::appendLittleEndian(out, std::uint32_t(field.size()));
    out += field;
}

void Record::readField(const char **cursor, QString &field)
{
    const auto count = Kelm::readLittleEndian<std::uint32_t>(cursor);
    Kelm::requireBytes(*cursor, count, sizeof(std::uint16_t));
    field.resize(int(count));
    for (QChar &c : field)
        c = QChar(Kelm::readLittleEndian<std::uint16_t>(cursor));
}

void Record::readField(const char **cursor, std::string &field)
{
    const auto count = Kelm::readLittleEndian<std::uint32_t>(cursor);
    field = Kelm::readBytes(cursor, count);
}

} // namespace values
