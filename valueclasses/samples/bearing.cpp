#include "valueclasses/samples/bearing.h"

#include "valueclasses/samples/sampletext_p.h"

#include <algorithm>

namespace values {
namespace {

using Kelm::putLittleEndian;

constexpr int kLevelOffset = 199; // so that 0 is left for an invalid level
constexpr int kLevelMask = 0x1FF;
constexpr int kValidityMask = 0x6F;

int packedLevel(int hundredths)
{
    return std::clamp(hundredths / 100 + kLevelOffset, 0, kLevelMask);
}

std::int16_t unpackedLevel(std::uint32_t bits)
{
    return bits == 0 ? std::int16_t(-32768) : std::int16_t((int(bits) - kLevelOffset) * 100);
}

std::uint32_t packed(const Bearing &sample)
{
    const auto azimuth = std::min(sample.azimuth / 100, 0x1FF);
    const auto elevation = std::min(sample.elevation / 100, 0x7F);
    const auto quality = std::clamp<int>(sample.quality, 0, 0x7F);
    std::int64_t word = packedLevel(sample.level);
    word = word * 512 + azimuth;
    word = word * 128 + elevation;
    return static_cast<std::uint32_t>(word * 128 + quality);
}

Bearing unpacked(std::uint32_t word)
{
    Bearing sample;
    sample.quality = std::int16_t(word & 0x7F);
    sample.elevation = std::int16_t(((word >> 7) & 0x7F) * 100);
    sample.azimuth = std::uint16_t(((word >> 14) & 0x1FF) * 100);
    sample.level = unpackedLevel(word >> 23);
    return sample;
}

QString directionText(const Bearing &sample, int angleMode, const QString *unit)
{
    const QString level = Detail::levelText(sample.level / 100.0, unit);
    if (sample.azimuth >= 36000 || (angleMode != 1 && sample.quality < 1))
        return level + QStringLiteral("\n-\n0 %");
    const double azimuth = Detail::normalisedAzimuth(sample.azimuth / 100.0, angleMode);
    return QStringLiteral("%1\n%2  °\n%3 %")
        .arg(level, Detail::withOneDigit(azimuth), QString::number(sample.quality));
}

QString elevationText(const Bearing &sample, int angleMode, const QString *unit)
{
    const QString level = Detail::levelText(sample.level / 100.0, unit);
    if (std::uint16_t(sample.elevation) >= 9000 || (angleMode != 1 && sample.quality < 1))
        return level + QStringLiteral("\n-\n0 %");
    return QStringLiteral("%1  °\n%2\n%3 %")
        .arg(Detail::withOneDigit(sample.elevation / 100.0), level,
             QString::number(sample.quality));
}

} // namespace

double Detail::normalisedAzimuth(double degrees, int angleMode)
{
    const double low = angleMode == 2 ? -179.99 : 0.0;
    const double high = angleMode == 2 ? 180.0 : 360.0;
    while (degrees > high)
        degrees -= 360.0;
    while (degrees < low)
        degrees += 360.0;
    return degrees;
}

QString Detail::shortTimeLine(int shortTimeLevel, const QString *unit)
{
    if (shortTimeLevel == -32768)
        return {};
    return QStringLiteral("\nShort-Time: %1 %2")
        .arg(withOneDigit(shortTimeLevel / 100.0), unitText(unit));
}

QString BearingExtended::ValidStr(Validity validity)
{
    switch (validity) {
    case Validity::invalid:
        return QStringLiteral("invalid");
    case Validity::valid:
        return QStringLiteral("valid");
    case Validity::blank:
        return QStringLiteral("blank");
    }
    return QStringLiteral("unknown validity!");
}

char *RawImage<Bearing>::write(char *destination, const Bearing &sample)
{
    destination = putLittleEndian(destination, sample.dt);
    destination = putLittleEndian(destination, sample.D);
    destination = putLittleEndian(destination, sample.level);
    destination = putLittleEndian(destination, sample.azimuth);
    destination = putLittleEndian(destination, sample.elevation);
    return putLittleEndian(destination, sample.quality);
}

Bearing RawImage<Bearing>::read(const char **cursor)
{
    Kelm::requireBytes(*cursor, size);
    Bearing sample;
    sample.dt = Detail::takeCounted<std::int32_t>(*cursor);
    sample.D = Detail::takeCounted<std::int32_t>(*cursor);
    sample.level = Detail::takeCounted<std::int16_t>(*cursor);
    sample.azimuth = Detail::takeCounted<std::uint16_t>(*cursor);
    sample.elevation = Detail::takeCounted<std::int16_t>(*cursor);
    sample.quality = Detail::takeCounted<std::int16_t>(*cursor);
    return sample;
}

char *RawImage<BearingExtended>::write(char *destination, const BearingExtended &sample)
{
    destination = RawImage<Bearing>::write(destination, sample);
    destination = putLittleEndian(destination, sample.validity);
    return putLittleEndian(destination, sample.shortTimeLevel);
}

BearingExtended RawImage<BearingExtended>::read(const char **cursor)
{
    Kelm::requireBytes(*cursor, size);
    BearingExtended sample{RawImage<Bearing>::read(cursor)};
    sample.validity = Detail::takeCounted<BearingExtended::Validity>(*cursor);
    sample.shortTimeLevel = Detail::takeCounted<std::int16_t>(*cursor);
    return sample;
}

void BearingHandler::throwNoDimension()
{
    // The names are what readers of traces know this fault by.
    throwDimension("Base Type for ValueMap is Bearing and has only six dimensions!",
                   "doubleHandler", "doubleHandler::GetDimension");
}

void BearingHandler::SetDimensionValue(int dimension, Bearing &sample, double value)
{
    switch (dimension) {
    case 0:
        sample.level = Detail::truncateTo<std::int16_t>(value * 100.0);
        break;
    case 1:
        sample.dt = Detail::truncateTo<std::int32_t>(value);
        break;
    case 2:
        sample.D = Detail::truncateTo<std::int32_t>(value);
        break;
    case 3:
        sample.azimuth = Detail::truncateTo<std::uint16_t>(value * 100.0);
        break;
    case 4:
        sample.elevation = Detail::truncateTo<std::int16_t>(value * 100.0);
        break;
    case 5:
        sample.quality = Detail::truncateTo<std::int16_t>(value);
        break;
    default:
        throwNoDimension();
    }
}

QString &BearingHandler::GetFormattedString(int dimension, QString &text, const Bearing &sample,
                                            int angleMode, const QString *unit)
{
    switch (dimension) {
    case 0:
    case 3:
        return text = directionText(sample, angleMode, unit);
    case 1:
        return text = QString::number(sample.dt);
    case 2:
        return text = QString::number(sample.D);
    case 4:
        return text = elevationText(sample, angleMode, unit);
    case 5:
        return text = QString::number(sample.quality) + QStringLiteral(" %");
    default:
        throwDimension("Base Type for ValueMap is Bearing and has only six dimensions!",
                       "BearingHandler", "BearingHandler::GetDimension");
    }
}

std::string BearingHandler::ToString(const Bearing &sample)
{
    return QStringLiteral("[dt:%1 D:%2 Level:%3 Az:%4 El:%5 Qual:%6]")
        .arg(sample.dt)
        .arg(sample.D)
        .arg(sample.level)
        .arg(sample.azimuth)
        .arg(sample.elevation)
        .arg(sample.quality)
        .toStdString();
}

char *BearingHandler::ToBinary(char *destination, const Bearing &sample)
{
    if (GetDataCompressMode() != DataCompressed)
        return toRawImage(destination, sample);
    return putLittleEndian(destination, packed(sample));
}

Bearing BearingHandler::FromBinary(const char **cursor, bool &ok, int)
{
    ok = true;
    switch (GetDataCompressMode()) {
    case DataRaw:
        return fromRawImage<Bearing>(cursor);
    case DataCompressed:
        return unpacked(Kelm::readLittleEndian<std::uint32_t>(cursor));
    default:
        return Minimum();
    }
}

void BearingExtendedHandler::SetDimensionValue(int dimension, BearingExtended &sample, double value)
{
    if (dimension == 7)
        sample.shortTimeLevel = Detail::truncateTo<std::int16_t>(value * 100.0);
    else
        BearingHandler::SetDimensionValue(dimension, sample, value);
}

QString &BearingExtendedHandler::GetFormattedString(int dimension, QString &text,
                                                    const BearingExtended &sample, int angleMode,
                                                    const QString *unit)
{
    const bool ownDimension = dimension == 6 || dimension == 7;
    BearingHandler::GetFormattedString(ownDimension ? 0 : dimension, text, sample, angleMode, unit);
    text += QLatin1Char('\n') + BearingExtended::ValidStr(sample.validity);
    return text += Detail::shortTimeLine(sample.shortTimeLevel, unit);
}

std::string BearingExtendedHandler::ToString(const BearingExtended &sample)
{
    std::string text = BearingHandler::ToString(sample);
    text.pop_back();
    return text + QStringLiteral(" Validity:%1 ShortTimeLevel:%2]")
                      .arg(BearingExtended::ValidStr(sample.validity))
                      .arg(sample.shortTimeLevel)
                      .toStdString();
}

char *BearingExtendedHandler::ToBinary(char *destination, const BearingExtended &sample)
{
    if (GetDataCompressMode() != DataCompressed)
        return toRawImage(destination, sample);
    const int validity = std::min<int>(int(sample.validity), 0x7F);
    destination = putLittleEndian(destination, packed(sample));
    return putLittleEndian(destination, static_cast<std::uint16_t>(
                                            validity * 512 + packedLevel(sample.shortTimeLevel)));
}

BearingExtended BearingExtendedHandler::FromBinary(const char **cursor, bool &ok, int)
{
    ok = true;
    switch (GetDataCompressMode()) {
    case DataRaw:
        return fromRawImage<BearingExtended>(cursor);
    case DataCompressed: {
        Kelm::requireBytes(*cursor, 6);
        BearingExtended sample{unpacked(Detail::takeCounted<std::uint32_t>(*cursor))};
        const auto word = Detail::takeCounted<std::uint16_t>(*cursor);
        sample.validity = BearingExtended::Validity((word >> 9) & kValidityMask);
        sample.shortTimeLevel = unpackedLevel(word & kLevelMask);
        return sample;
    }
    default:
        return Minimum();
    }
}

} // namespace values
