#include "valueclasses/samples/minmax.h"

#include "valueclasses/samples/sampletext_p.h"

namespace values {

char *RawImage<MinMax>::write(char *destination, const MinMax &sample)
{
    destination = Kelm::putLittleEndian(destination, sample.min);
    return Kelm::putLittleEndian(destination, sample.max);
}

MinMax RawImage<MinMax>::read(const char **cursor)
{
    Kelm::requireBytes(*cursor, size);
    MinMax sample;
    sample.min = Detail::takeCounted<std::int16_t>(*cursor);
    sample.max = Detail::takeCounted<std::int16_t>(*cursor);
    return sample;
}

void MinMaxHandler::throwNoDimension(const char *functionName)
{
    throwDimension("Base Type for ValueMap is MinMax and has only two dimensions!", "MinMaxHandler",
                   functionName);
}

void MinMaxHandler::SetDimensionValue(int dimension, MinMax &sample, double value)
{
    if (dimension != 0 && dimension != 1)
        throwNoDimension("MinMaxHandler::SetDimensionValue");
    (dimension == 0 ? sample.max : sample.min) = Detail::truncateTo<std::int16_t>(value);
}

QString &MinMaxHandler::GetFormattedString(int dimension, QString &text, const MinMax &sample, int,
                                           const QString *unit)
{
    if (dimension != 0 && dimension != 1)
        throwNoDimension("MinMaxHandler::GetFormattedString");
    const QString unitText = Detail::unitText(unit);
    return text = QStringLiteral("%1 %2\n%3 %4")
                      .arg(Detail::withOneDigit(sample.max / 10.0), unitText,
                           Detail::withOneDigit(sample.min / 10.0), unitText);
}

std::string MinMaxHandler::ToString(const MinMax &sample)
{
    return QStringLiteral("[Level min:%1 Level max:%2]")
        .arg(sample.min)
        .arg(sample.max)
        .toStdString();
}

char *MinMaxHandler::ToBinary(char *destination, const MinMax &sample)
{
    return toRawImage(destination, sample);
}

MinMax MinMaxHandler::FromBinary(const char **cursor, bool &ok, int)
{
    ok = true;
    return fromRawImage<MinMax>(cursor);
}

QString &ElevOverAziMinMaxHandler::GetFormattedString(int, QString &text, const MinMax &sample, int,
                                                      const QString *)
{
    return text = QStringLiteral("%1 °\n%2 %")
                      .arg(Detail::withOneDigit(sample.max), Detail::withOneDigit(sample.min));
}

} // namespace values
