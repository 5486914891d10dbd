#include "valueclasses/records/rectanglencolor.h"

#include "valueclasses/records/recordforms_p.h"

#include <algorithm>

namespace values {

namespace {
constexpr Record::Layout kLayout{.name = "RectangleNColor", .separator = ','};
constexpr int kFieldCount = 5;
} // namespace

RectangleNColor::RectangleNColor(double xStart, double xStop, double yStart, double yStop,
                                 std::uint32_t color)
{
    char *position = m_buffer.bytes.data();
    for (const double limit : {xStart, xStop, yStart, yStop})
        position = Kelm::putLittleEndian(position, limit);
    Kelm::putLittleEndian(position, color);
}

double RectangleNColor::limit(int index) const
{
    const char *position = m_buffer.bytes.data() + std::size_t(index) * sizeof(double);
    return Kelm::readLittleEndian<double>(&position);
}

std::uint32_t RectangleNColor::GetColor() const
{
    const char *position = m_buffer.bytes.data() + 4 * sizeof(double);
    return Kelm::readLittleEndian<std::uint32_t>(&position);
}

QString RectangleNColor::GetString(const Buffer &buffer)
{
    const RectangleNColor rectangle(buffer);
    const auto number = [](double limit) { return QString::number(limit, 'f', 6); };
    return QStringLiteral("%1,%2,%3,%4,0x%5")
        .arg(number(rectangle.GetXStart()), number(rectangle.GetXStop()),
             number(rectangle.GetYStart()), number(rectangle.GetYStop()),
             QString::number(rectangle.GetColor(), 16));
}

RectangleNColor::Buffer RectangleNColor::GetValue(const QString &text)
{
    const QStringList fields = Record::split(text, kLayout, kFieldCount, -1);
    const auto limit = [&](int field) { return Record::parse<double>(fields[field], kLayout); };
    bool isNumber = false;
    const QString &color = fields[4];
    const uint value = color.mid(2).toUInt(&isNumber, 16);
    if (!isNumber || !color.startsWith(QLatin1String("0x")))
        Record::failNumber(kLayout, color);
    return RectangleNColor(limit(0), limit(1), limit(2), limit(3), value).GetBuffer();
}

} // namespace values

template <>
std::string Kelm::toStandardString<values::BinaryBuffer<36>>(const values::BinaryBuffer<36> &record)
{
    return {record.bytes.data(), record.bytes.size()};
}

template <>
values::BinaryBuffer<36> Kelm::fromCharStream<values::BinaryBuffer<36>>(const char **cursor)
{
    values::BinaryBuffer<36> record;
    requireBytes(*cursor, record.bytes.size());
    std::copy_n(*cursor, record.bytes.size(), record.bytes.begin());
    *cursor += record.bytes.size();
    return record;
}
