#include "scanbuffer/averagetime.h"

#include <cmath>
#include <limits>

namespace sbs {
namespace {

constexpr KRTimeStamp kLongestGap = 600'000'000; // ten minutes
constexpr double kSmoothing = 0.1;

bool isUnset(double mean) { return std::abs(mean) <= std::numeric_limits<double>::epsilon(); }

} // namespace

void AverageTime::addTimeStamp(KRTimeStamp time)
{
    const KRTimeStamp last = m_last;
    m_last = time;
    if (last == 0 || last > time || time - last > kLongestGap) {
        m_meanSeconds = 0.0;
        return;
    }
    const double seconds = static_cast<double>(time - last) / 1e6;
    m_meanSeconds = isUnset(m_meanSeconds)
                        ? seconds
                        : (1.0 - kSmoothing) * m_meanSeconds + kSmoothing * seconds;
}

double AverageTime::averageEventsPerSecond() const
{
    return isUnset(m_meanSeconds) ? 0.0 : 1.0 / m_meanSeconds;
}

} // namespace sbs
