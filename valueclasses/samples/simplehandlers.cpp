#include "valueclasses/samples/simplehandlers.h"

#include "valueclasses/samples/sampletext_p.h"

#include <algorithm>

namespace values {
namespace {

constexpr unsigned char kInvalidByte = 0x80;

std::string withSemicolon(const QString &text) { return (text + QLatin1Char(';')).toStdString(); }

QString &plainText(QString &text, double value, const QString *unit)
{
    text = QString::number(Detail::inUnit(value, unit)) + QLatin1Char(' ') + Detail::unitText(unit);
    return text;
}

signed char toWholeUnits(short tenths)
{
    if (tenths <= levelHandler::Minimum())
        return static_cast<signed char>(kInvalidByte);
    return static_cast<signed char>(std::clamp(tenths / 10, -127, 127));
}

} // namespace

QString &charHandler::GetFormattedString(int dimension, QString &text, const char &sample, int,
                                         const QString *unit)
{
    return plainText(text, GetDimension(dimension, sample), unit);
}

std::string charHandler::ToString(const char &sample)
{
    return withSemicolon(QString(QLatin1Char(sample)));
}

QString &shortHandler::GetFormattedString(int dimension, QString &text, const short &sample, int,
                                          const QString *unit)
{
    return plainText(text, GetDimension(dimension, sample), unit);
}

std::string shortHandler::ToString(const short &sample)
{
    return withSemicolon(QString::number(sample));
}

QString &levelHandler::GetFormattedString(int dimension, QString &text, const short &sample, int,
                                          const QString *unit)
{
    text = Detail::levelText(GetDimension(dimension, sample), unit);
    return text;
}

std::string levelHandler::ToString(const short &sample)
{
    return withSemicolon(Detail::withOneDigit(sample / 10.0));
}

char *levelHandler::ToBinary(char *destination, const short &sample)
{
    if (GetDataCompressMode() != DataCompressed)
        return toRawImage(destination, sample);
    return Kelm::putLittleEndian(destination, toWholeUnits(sample));
}

short levelHandler::FromBinary(const char **cursor, bool &ok, int)
{
    ok = true;
    switch (GetDataCompressMode()) {
    case DataRaw:
        return fromRawImage<short>(cursor);
    case DataCompressed: {
        const auto units = Kelm::readLittleEndian<signed char>(cursor);
        return static_cast<unsigned char>(units) == kInvalidByte ? Minimum() : short(units * 10);
    }
    default:
        return Minimum();
    }
}

QString &longHandler::GetFormattedString(int dimension, QString &text, const Kelm::Long &sample,
                                         int, const QString *unit)
{
    return plainText(text, GetDimension(dimension, sample), unit);
}

std::string longHandler::ToString(const Kelm::Long &sample)
{
    return withSemicolon(QString::number(std::int32_t(sample)));
}

QString &floatHandler::GetFormattedString(int dimension, QString &text, const float &sample, int,
                                          const QString *unit)
{
    return plainText(text, GetDimension(dimension, sample), unit);
}

std::string floatHandler::ToString(const float &sample)
{
    return withSemicolon(QStringLiteral("%1").arg(double(sample), 0, 'f'));
}

QString &floatPercentHandler::GetFormattedString(int dimension, QString &text, const float &sample,
                                                 int, const QString *)
{
    text = QString::number(GetDimension(dimension, sample)) + QStringLiteral(" %");
    return text;
}

QString &doubleHandler::GetFormattedString(int dimension, QString &text, const double &sample, int,
                                           const QString *unit)
{
    text = Detail::withOneDigit(GetDimension(dimension, sample)) + QLatin1Char(' ') +
           Detail::unitText(unit);
    return text;
}

std::string doubleHandler::ToString(const double &sample)
{
    return withSemicolon(QString::number(sample));
}

} // namespace values
