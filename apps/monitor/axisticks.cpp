#include "apps/monitor/axisticks.h"

#include <algorithm>
#include <cmath>

namespace monitor {
namespace {

constexpr int kMostTicks = 1000;
constexpr int kMostDecimals = 12;

/// The smallest 1-2-5 step that is not below \a wanted.
double niceStep(double wanted)
{
    const double decade = std::pow(10.0, std::floor(std::log10(wanted)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * decade >= wanted * (1.0 - 1e-9))
            return factor * decade;
    return 10.0 * decade;
}

int decimalsFor(double step)
{
    if (!(step > 0.0))
        return 0;
    return std::clamp(int(std::ceil(-std::log10(step) - 1e-9)), 0, kMostDecimals);
}

} // namespace

Ticks ticksFor(double low, double high, int maximumCount)
{
    Ticks ticks;
    if (!std::isfinite(low) || !std::isfinite(high) || !(high > low) || maximumCount < 1)
        return ticks;
    // Far from zero and close together, neighbouring doubles leave no room for ticks.
    if (high - low < 1e-12 * std::max(std::abs(low), std::abs(high)))
        return ticks;
    ticks.step = niceStep((high - low) / std::min(maximumCount, kMostTicks));
    const double slack = 1e-9 * ticks.step;
    const double first = std::ceil((low - slack) / ticks.step);
    const double last = std::floor((high + slack) / ticks.step);
    for (double index = first; index <= last; ++index)
        ticks.values.push_back(index * ticks.step);
    return ticks;
}

EngineeringUnit frequencyUnit(double lowHz, double highHz)
{
    const double largest = std::max(std::abs(lowHz), std::abs(highHz));
    if (largest >= 10e9 || highHz - lowHz >= 1e9)
        return {1e9, QStringLiteral("GHz")};
    if (largest >= 1e6)
        return {1e6, QStringLiteral("MHz")};
    if (largest >= 1e3)
        return {1e3, QStringLiteral("kHz")};
    return {1.0, QStringLiteral("Hz")};
}

EngineeringUnit durationUnit(double seconds)
{
    if (seconds >= 3.0 * 3600.0)
        return {3600.0, QStringLiteral("h")};
    if (seconds >= 180.0)
        return {60.0, QStringLiteral("min")};
    if (seconds >= 0.5)
        return {1.0, QStringLiteral("s")};
    if (seconds >= 0.5e-3)
        return {1e-3, QStringLiteral("ms")};
    return {1e-6, QStringLiteral("us")};
}

QString tickLabel(double value, double step, const EngineeringUnit &unit)
{
    const double shown = value / unit.divisor;
    const int decimals = decimalsFor(step / unit.divisor);
    // A zero that rounding made negative would be printed as "-0".
    const bool zero = std::abs(shown) < 0.5 * std::pow(10.0, -decimals);
    QString text = QString::number(zero ? 0.0 : shown, 'f', decimals);
    return text.replace(QLatin1Char('-'), QChar(0x2212));
}

QString frequencyText(double hz, double resolutionHz)
{
    const EngineeringUnit unit = frequencyUnit(hz, hz);
    return tickLabel(hz, resolutionHz, unit) + QLatin1Char(' ') + unit.name;
}

QString groupedNumber(quint64 number)
{
    QString text = QString::number(number);
    for (int at = int(text.size()) - 3; at > 0; at -= 3)
        text.insert(at, QChar(0x202F));
    return text;
}

QString countText(quint64 number, const char *thing)
{
    return groupedNumber(number) + QLatin1Char(' ') + QLatin1String(thing) +
           (number == 1 ? QString() : QStringLiteral("s"));
}

} // namespace monitor
