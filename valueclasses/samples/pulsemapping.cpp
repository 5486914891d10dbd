#include "valueclasses/samples/pulsemapping.h"

#include "valueclasses/samples/sampletext_p.h"

namespace values {
namespace {

constexpr const char *kSettingMessage =
    "Base Type for ValueMap is Pulse and has only 7 dimensions!";

} // namespace

char *RawImage<Pulse>::write(char *destination, const Pulse &sample)
{
    destination = Kelm::putLittleEndian(destination, sample.level);
    destination = Kelm::putLittleEndian(destination, sample.pulseLevelMax);
    destination = Kelm::putLittleEndian(destination, sample.pulseLevelMin);
    destination = Kelm::putLittleEndian(destination, sample.pulseCount);
    return Kelm::putLittleEndian(destination, sample.pulseType);
}

Pulse RawImage<Pulse>::read(const char **cursor)
{
    Kelm::requireBytes(*cursor, size);
    Pulse sample;
    sample.level = Detail::takeCounted<std::int16_t>(*cursor);
    sample.pulseLevelMax = Detail::takeCounted<std::int16_t>(*cursor);
    sample.pulseLevelMin = Detail::takeCounted<std::int16_t>(*cursor);
    sample.pulseCount = Detail::takeCounted<std::uint16_t>(*cursor);
    sample.pulseType = Detail::takeCounted<std::uint8_t>(*cursor);
    return sample;
}

void PulseHandler::throwNoDimension()
{
    throwDimension("Base Type for ValueMap is Pulse and has only two dimensions!", "PulseHandler",
                   "PulseHandler::GetDimension");
}

void PulseHandler::SetDimensionValue(int dimension, Pulse &sample, double value)
{
    switch (dimension) {
    case 0:
        sample.level = Detail::truncateTo<std::int16_t>(value * 10.0);
        break;
    case 1:
        sample.pulseLevelMax = Detail::truncateTo<std::int16_t>(value * 10.0);
        break;
    case 2:
        sample.pulseType = Detail::truncateTo<std::uint8_t>(value);
        break;
    case 3:
        sample.pulseLevelMin = Detail::truncateTo<std::int16_t>(value * 10.0);
        break;
    case 4:
        sample.pulseCount = Detail::truncateTo<std::uint16_t>(value);
        break;
    default:
        throwDimension(kSettingMessage, "PulseHandler", "PulseHandler::SetDimensionValue");
    }
}

QString &PulseHandler::GetFormattedString(int dimension, QString &text, Pulse &sample, int,
                                          const QString *unit)
{
    if (dimension < 0 || dimension >= GetDimensionCnt())
        throwDimension(kSettingMessage, "PulseHandler", "PulseHandler::GetFormattedString");
    return text = Detail::levelText(sample.level / 10.0, unit) + QLatin1Char('\n') +
                  Detail::levelText(sample.pulseLevelMax / 10.0, unit);
}

std::string PulseHandler::ToString(const Pulse &sample)
{
    // %5 and %6 stay in the text: readers of logs expect them there.
    return QStringLiteral("[Level:%1 Pulse: T:%2 L:%3-%4 PD:%5-%6]")
        .arg(sample.level)
        .arg(sample.pulseType)
        .arg(sample.pulseLevelMin)
        .arg(sample.pulseLevelMax)
        .toStdString();
}

char *PulseHandler::ToBinary(char *destination, const Pulse &sample)
{
    return toRawImage(destination, sample);
}

Pulse PulseHandler::FromBinary(const char **cursor, bool &ok, int)
{
    ok = true;
    return fromRawImage<Pulse>(cursor);
}

} // namespace values
