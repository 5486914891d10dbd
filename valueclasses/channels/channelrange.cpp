#include "valueclasses/channels/channelrange.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace values {
namespace {

constexpr std::uint64_t kMaxCount = std::numeric_limits<unsigned int>::max();

// From id 0 on one is left out: a count of all ids has no number.
unsigned int countThatFits(unsigned int firstChannelId, std::uint64_t count)
{
    return static_cast<unsigned int>(std::min({count, kMaxCount, kMaxCount - firstChannelId + 1}));
}

std::uint64_t countOfSpan(double start, double step, double stop)
{
    const double span = stop - start;
    if (!(span >= 0.5 && step > 0.0))
        return 1;
    // The limit comes before the conversion: a double past the integer's range has no integer.
    return std::uint64_t(std::min(span / step + 0.5, double(kMaxCount))) + 1;
}

bool nearlyEqual(double a, double b)
{
    if (a == b)
        return true;
    const double difference = std::abs(a - b);
    if (a == 0.0 || b == 0.0 || difference < std::numeric_limits<double>::min())
        return difference < std::numeric_limits<double>::denorm_min();
    return difference < std::min(std::abs(a), std::abs(b)) * std::numeric_limits<double>::epsilon();
}

} // namespace

ChannelRange::ChannelRange(unsigned int firstChannelId, unsigned int channelCount,
                           double firstCenterFrequency, double frequencyStep, QString name)
    : m_firstChannelId(firstChannelId), m_channelCount(countThatFits(firstChannelId, channelCount)),
      m_firstCenterFrequency(firstCenterFrequency), m_frequencyStep(frequencyStep),
      m_name(std::move(name))
{
}

ChannelRange::ChannelRange(unsigned int firstChannelId, double startFrequency, double frequencyStep,
                           double stopFrequency, QString name)
    : m_firstChannelId(firstChannelId),
      m_channelCount(
          countThatFits(firstChannelId, countOfSpan(startFrequency, frequencyStep, stopFrequency))),
      m_firstCenterFrequency(startFrequency), m_frequencyStep(frequencyStep),
      m_name(std::move(name))
{
}

ChannelRange::ChannelRange(unsigned int firstChannelId, double frequency, double frequencyStep,
                           QString name)
    : ChannelRange(firstChannelId, 1U, frequency, frequencyStep, std::move(name))
{
}

ChannelRange::~ChannelRange() = default;

double ChannelRange::GetLastCenterFrequency() const
{
    if (m_channelCount == 0)
        return m_firstCenterFrequency;
    return m_firstCenterFrequency + double(m_channelCount - 1) * m_frequencyStep;
}

bool ChannelRange::SharesIdsWith(const ChannelRange &other) const
{
    return m_channelCount != 0 && other.m_channelCount != 0 &&
           m_firstChannelId <= other.GetLastChannelId() &&
           GetLastChannelId() >= other.m_firstChannelId;
}

double ChannelRange::GetClosestChannelFrequency(double frequency, bool halfStep) const
{
    const double low = halfStep ? GetFirstStartFrequency() : m_firstCenterFrequency;
    const double high = halfStep ? GetLastStopFrequency() : GetLastCenterFrequency();
    const double grid = halfStep ? m_frequencyStep / 2.0 : m_frequencyStep;
    if (frequency <= low)
        return low;
    if (frequency >= high)
        return high;
    return std::floor((frequency - low) / grid + 0.5) * grid + low;
}

unsigned int ChannelRange::GetClosestChannelIdForFrequency(double frequency) const
{
    if (m_frequencyStep == 0.0 || frequency < m_firstCenterFrequency || m_channelCount == 0)
        return m_firstChannelId;
    const double offset = (frequency - m_firstCenterFrequency) / m_frequencyStep + 0.5;
    if (!(offset > 0.0)) // also what is no number
        return m_firstChannelId;
    return m_firstChannelId +
           static_cast<unsigned int>(std::min(offset, double(m_channelCount - 1)));
}

bool ChannelRange::operator==(const ChannelRange &other) const
{
    return m_firstChannelId == other.m_firstChannelId && m_channelCount == other.m_channelCount &&
           nearlyEqual(m_firstCenterFrequency, other.m_firstCenterFrequency) &&
           nearlyEqual(m_frequencyStep, other.m_frequencyStep);
}

} // namespace values
