#pragma once

#include <QString>

/// Pieces of the tooltip texts of samples.
namespace values::Detail {

inline QString withOneDigit(double value) { return QString::number(value, 'f', 1); }

/// Null stands for no unit.
inline QString unitText(const QString *unit) { return unit == nullptr ? QString() : *unit; }

/// Levels are held in dBµV; shown in dBm they are less by 107.
inline double inUnit(double level, const QString *unit)
{
    return unit != nullptr && *unit == QLatin1String("dBm") ? level - 107.0 : level;
}

/// "12.3 dBµV", with one digit, the level taken into its unit.
inline QString levelText(double level, const QString *unit)
{
    return withOneDigit(inUnit(level, unit)) + QLatin1Char(' ') + unitText(unit);
}

/// Degrees in -179.99 to 180 for angle mode 2, and in 0 to 360 for any other.
double normalisedAzimuth(double degrees, int angleMode);

/// What BearingHandler and DFSpectrumSampleHandler append for a short-time level that is valid.
QString shortTimeLine(int shortTimeLevel, const QString *unit);

} // namespace values::Detail
