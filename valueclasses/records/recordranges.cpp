#include "valueclasses/records/recordranges.h"

#include "valueclasses/records/recordforms_p.h"

namespace values {

namespace {
constexpr Record::Layout kLayout{.name = "RecordRanges"};
}

QString FormatRecordRanges::GetString(const RecordRanges &record)
{
    return Record::print(record, kLayout);
}

RecordRanges FormatRecordRanges::GetValue(const QString &text)
{
    return Record::parseRecord<RecordRanges>(text, kLayout);
}

} // namespace values

template <>
std::string Kelm::toStandardString<values::RecordRanges>(const values::RecordRanges &record)
{
    std::string image;
    appendLittleEndian(image, record.GetRecorder());
    appendLittleEndian(image, std::uint32_t(0));
    appendLittleEndian(image, record.GetBegin());
    appendLittleEndian(image, record.GetEnd());
    return image;
}

template <>
values::RecordRanges Kelm::fromCharStream<values::RecordRanges>(const char **cursor)
{
    const int recorder = readLittleEndian<int>(cursor);
    readLittleEndian<std::uint32_t>(cursor);
    const auto begin = readLittleEndian<std::int64_t>(cursor);
    const auto end = readLittleEndian<std::int64_t>(cursor);
    return {recorder, begin, end};
}
