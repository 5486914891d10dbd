#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/channels/channelrangedefinition.h"

#include <QDataStream>
#include <QIODevice>

#include <cmath>
#include <limits>

namespace values {
namespace {

constexpr qint8 kVersion = 0;
constexpr int kLeastRangeBytes = 32; // three numbers, two doubles and the length of a name
constexpr std::size_t kOldRangeBytes = 28, kOldestRangeBytes = 24;
constexpr quint32 kNullName = 0xFFFFFFFF;

[[noreturn]] void throwMalformed(const QString &reason)
{
    throw KRException(reason, __FILE__, "ChannelRangeDefinition",
                      "fromCharStream<ChannelRangeDefinition>", __LINE__);
}

[[noreturn]] void throwTruncated()
{
    throwMalformed(QStringLiteral("Command string is not terminated with ';'"));
}

/// A frequency that is no number would make a grid that differs from its own copy.
void requireFinite(double firstCenterFrequency, double frequencyStep)
{
    if (!std::isfinite(firstCenterFrequency) || !std::isfinite(frequencyStep))
        throwMalformed(QStringLiteral("A channel range has a frequency that is not finite"));
}

/// A QString of the stream, checked against what is left before memory is taken.
QString readName(QDataStream &stream)
{
    quint32 bytes = kNullName;
    stream >> bytes;
    if (bytes == kNullName)
        return {};
    if (bytes % 2 != 0 || bytes > stream.device()->bytesAvailable())
        throwTruncated();
    QString name(int(bytes / 2), Qt::Uninitialized);
    for (QChar &character : name) {
        quint16 unit = 0;
        stream >> unit;
        character = QChar(unit);
    }
    return name;
}

void readRange(QDataStream &stream, ChannelRangeDefinition::RangeMap &ranges)
{
    qint32 key = 0, firstChannelId = 0, channelCount = 0;
    double firstCenterFrequency = 0.0, frequencyStep = 0.0;
    stream >> key >> firstChannelId >> channelCount >> firstCenterFrequency >> frequencyStep;
    QString name = readName(stream);
    if (stream.status() != QDataStream::Ok)
        throwTruncated();
    requireFinite(firstCenterFrequency, frequencyStep);
    ranges.insert_or_assign(key,
                            ChannelRange(quint32(firstChannelId), quint32(channelCount),
                                         firstCenterFrequency, frequencyStep, std::move(name)));
}

ChannelRangeDefinition::RangeMap readRanges(QDataStream &stream)
{
    qint8 version = 0;
    qint32 count = 0;
    stream >> version >> count;
    if (stream.status() != QDataStream::Ok)
        throwTruncated();
    if (version != kVersion)
        throwMalformed(
            QStringLiteral("Unknown version %1 of a channel range definition").arg(version));
    if (count < 0 || count > stream.device()->bytesAvailable() / kLeastRangeBytes)
        throwTruncated();
    ChannelRangeDefinition::RangeMap ranges;
    for (qint32 i = 0; i < count; ++i)
        readRange(stream, ranges);
    return ranges;
}

/// Bytes of one entry of the older forms, told by where the terminator stands.
std::size_t oldEntrySize(const char *entries, std::int16_t count)
{
    for (const std::size_t size : {kOldestRangeBytes, kOldRangeBytes}) {
        const std::size_t end = count < 0 ? 0 : std::size_t(count) * size;
        if (count >= 0 && end < Kelm::bytesLeft(entries) && entries[end] == ';')
            return size;
    }
    throw KRException(QStringLiteral("Command string is not terminated with ';'"), __FILE__,
                      "CommandSetChannelRangeDefinition<Y, YHandler>",
                      "CommandSetChannelRangeDefinition<Y, YHandler>", __LINE__);
}

ChannelRange readOldRange(const char **cursor)
{
    const auto firstChannelId = Kelm::readLittleEndian<std::uint32_t>(cursor);
    const auto channelCount = Kelm::readLittleEndian<std::uint32_t>(cursor);
    const auto firstCenterFrequency = Kelm::readLittleEndian<double>(cursor);
    const auto frequencyStep = Kelm::readLittleEndian<double>(cursor);
    requireFinite(firstCenterFrequency, frequencyStep);
    return {firstChannelId, channelCount, firstCenterFrequency, frequencyStep, QString()};
}

} // namespace

std::string ChannelRangeDefinition::toOldStandardString() const
{
    if (m_ranges.size() > std::size_t(std::numeric_limits<std::int16_t>::max()))
        throw KRException(QStringLiteral("Too many channel ranges for the old string form"),
                          __FILE__, "ChannelRangeDefinition", "toOldStandardString", __LINE__);
    std::string out;
    out.reserve(2 + m_ranges.size() * kOldRangeBytes + 1);
    Kelm::appendLittleEndian(out, std::int16_t(m_ranges.size()));
    for (const auto &[key, range] : m_ranges) {
        Kelm::appendLittleEndian(out, std::int32_t(key));
        Kelm::appendLittleEndian(out, std::uint32_t(range.GetFirstChannelId()));
        Kelm::appendLittleEndian(out, std::uint32_t(range.GetChannelCount()));
        Kelm::appendLittleEndian(out, range.GetFirstCenterFrequency());
        Kelm::appendLittleEndian(out, range.GetFrequencyStep());
    }
    out += ';';
    return out;
}

void ChannelRangeDefinition::fromOldCharStream(const char **cursor)
{
    const char *position = *cursor;
    const auto count = Kelm::readLittleEndian<std::int16_t>(&position);
    const bool keyed = oldEntrySize(position, count) == kOldRangeBytes;
    RangeMap ranges = m_ranges;
    for (int i = 0; i < count; ++i) {
        const int key = keyed ? Kelm::readLittleEndian<std::int32_t>(&position) : i;
        ranges.insert_or_assign(key, readOldRange(&position));
    }
    ChannelRangeDefinition checked;
    checked.SetChannelRangeMap(ranges);
    *this = std::move(checked);
    *cursor = position + 1;
}

} // namespace values

template <>
std::string Kelm::toStandardString(const values::ChannelRangeDefinition &definition)
{
    QByteArray image;
    QDataStream stream(&image, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    const auto &ranges = definition.GetChannelRangeMap();
    stream << values::kVersion << qint32(ranges.size());
    for (const auto &[key, range] : ranges) {
        const QString &name = range.GetName();
        stream << qint32(key) << qint32(range.GetFirstChannelId())
               << qint32(range.GetChannelCount()) << range.GetFirstCenterFrequency()
               << range.GetFrequencyStep() << (name.isNull() ? QString::fromLatin1("") : name);
    }
    std::string out;
    appendLittleEndian(out, std::uint32_t(image.size()));
    return out.append(image.constData(), std::size_t(image.size()));
}

template <>
values::ChannelRangeDefinition Kelm::fromCharStream(const char **cursor)
{
    const char *position = *cursor;
    const auto length = readLittleEndian<std::uint32_t>(&position);
    requireBytes(position, length);
    if (length > std::uint32_t(std::numeric_limits<int>::max()))
        values::throwTruncated();
    QDataStream stream(QByteArray::fromRawData(position, int(length)));
    stream.setVersion(QDataStream::Qt_5_15);
    values::ChannelRangeDefinition definition;
    definition.SetChannelRangeMap(values::readRanges(stream));
    *cursor = position + length;
    return definition;
}
