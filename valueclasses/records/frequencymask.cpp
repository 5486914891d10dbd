#include "valueclasses/records/frequencymask.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD_IMAGE(values::FrequencyMask)

namespace values {

namespace {
constexpr Record::Layout kLayout{.name = "FrequencyMask"};
constexpr Record::Layout kPointLayout{.name = "FrequencyMask", .separator = ','};
constexpr int kFieldCount = 6; // in front of the points
} // namespace

QString FormatFrequencyMask::GetString(const FrequencyMask &record)
{
    QString text = QStringLiteral("%1#%2#%3#%4#")
                       .arg(record.number)
                       .arg(record.frequency)
                       .arg(record.step)
                       .arg(record.hysteresis) +
                   record.name + QLatin1Char('#') + record.comment;
    for (const FrequencyMaskPoint &point : record.points)
        text += QLatin1Char('#') + Record::print(point, kPointLayout);
    return text;
}

FrequencyMask FormatFrequencyMask::GetValue(const QString &text)
{
    const int count = std::max(kFieldCount, text.count(QLatin1Char('#')) + 1);
    const QStringList fields = Record::split(text, kLayout, count, -1);
    FrequencyMask record;
    record.number = Record::parse<int>(fields[0], kLayout);
    record.frequency = Record::parse<std::int64_t>(fields[1], kLayout);
    record.step = Record::parse<std::int64_t>(fields[2], kLayout);
    record.hysteresis = Record::parse<int>(fields[3], kLayout);
    record.name = fields[4];
    record.comment = fields[5];
    for (int field = kFieldCount; field < count; ++field)
        record.points.push_back(
            Record::parseRecord<FrequencyMaskPoint>(fields[field], kPointLayout));
    return record;
}

} // namespace values
