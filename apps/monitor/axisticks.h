#pragma once

#include <QString>

#include <vector>

/// Where the ticks of an axis stand and what is written at them. Pure functions.
namespace monitor {

/// The values of an axis that get a tick: multiples of \a step inside the axis, rising.
struct Ticks {
    double step = 0.0; ///< 1, 2 or 5 times a power of ten; 0 when the axis has no extent
    std::vector<double> values;
};

/// The densest ticks with a 1-2-5 step that are at most \a maximumCount on low .. high.
/// A range that is empty, turned round or not finite has none.
Ticks ticksFor(double low, double high, int maximumCount);

/// A unit with an engineering prefix: values are divided by \a divisor before they are printed.
struct EngineeringUnit {
    double divisor = 1.0;
    QString name;
};

/// Hz, kHz, MHz or GHz. The GHz begin at 10 GHz or at a span of 1 GHz: engineers read 1090 MHz and
/// 2437 MHz more easily than 1.090 GHz.
EngineeringUnit frequencyUnit(double lowHz, double highHz);
/// us, ms, s, min or h for a duration of \a seconds.
EngineeringUnit durationUnit(double seconds);

/// \a value in \a unit, with the decimals that tell values \a step apart from each other.
QString tickLabel(double value, double step, const EngineeringUnit &unit);
/// A frequency with its unit, exact to \a resolutionHz, e.g. "98.1000 MHz".
QString frequencyText(double hz, double resolutionHz);
/// A whole number with thin groups of three digits, e.g. "10 000".
QString groupedNumber(quint64 number);
/// How many there are of something: "1 line", "10 000 lines".
QString countText(quint64 number, const char *thing);

} // namespace monitor
