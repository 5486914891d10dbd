#pragma once

#include "platform/base/export.h"

#include <QString>

namespace values {

/// A run of channels with constant spacing. Channel ids are the producer's numbers.
///
/// A plain value. Frequencies have whatever unit the caller uses throughout. A range without
/// channels holds no id, and a count is cut at the last id, 0xFFFFFFFF, and to that number.
class SPECTREE_EXPORT ChannelRange {
public:
    ChannelRange() = default;
    ChannelRange(unsigned int firstChannelId, unsigned int channelCount,
                 double firstCenterFrequency, double frequencyStep, QString name);
    /// From the first to the last centre: round(span / step) + 1 channels, or one when the span is
    /// below 0.5 or the step is not positive.
    ChannelRange(unsigned int firstChannelId, double startFrequency, double frequencyStep,
                 double stopFrequency, QString name);
    /// One channel.
    ChannelRange(unsigned int firstChannelId, double frequency, double frequencyStep, QString name);
    ChannelRange(const ChannelRange &) = default;
    ChannelRange(ChannelRange &&) = default;
    ChannelRange &operator=(const ChannelRange &) = default;
    ChannelRange &operator=(ChannelRange &&) = default;
    virtual ~ChannelRange();

    unsigned int GetFirstChannelId() const { return m_firstChannelId; }
    unsigned int GetLastChannelId() const { return m_firstChannelId + m_channelCount - 1; }
    unsigned int GetChannelCount() const { return m_channelCount; }
    double GetFirstCenterFrequency() const { return m_firstCenterFrequency; }
    double GetLastCenterFrequency() const;
    /// Half a step below the first centre, and half a step above the last.
    double GetFirstStartFrequency() const { return m_firstCenterFrequency - 0.5 * m_frequencyStep; }
    double GetLastStopFrequency() const { return GetLastCenterFrequency() + 0.5 * m_frequencyStep; }
    double GetFrequencyStep() const { return m_frequencyStep; }
    const QString &GetName() const { return m_name; }

    bool HoldsChannelId(unsigned int id) const
    {
        return id >= m_firstChannelId && id - m_firstChannelId < m_channelCount;
    }
    /// True when the two share a channel id.
    bool SharesIdsWith(const ChannelRange &other) const;

    /// The nearest frequency of the grid of centres, or, with \a halfStep, of the grid of centres
    /// and channel edges; the ends of the grid for frequencies outside.
    double GetClosestChannelFrequency(double frequency, bool halfStep) const;
    /// The nearest channel; the first or last id for frequencies outside or a step of 0.
    unsigned int GetClosestChannelIdForFrequency(double frequency) const;

    /// Ids and count exactly, frequencies within one unit in the last place; the name plays no
    /// part.
    bool operator==(const ChannelRange &other) const;
    bool operator!=(const ChannelRange &other) const { return !(*this == other); }
    /// True when this range's first id is greater than or equal to the other's: the reversed sense
    /// is meant. No strict order, so not for std::sort or std::set.
    bool operator<(const ChannelRange &other) const
    {
        return m_firstChannelId >= other.m_firstChannelId;
    }

private:
    unsigned int m_firstChannelId = 0;
    unsigned int m_channelCount = 0;
    double m_firstCenterFrequency = 0.0;
    double m_frequencyStep = 0.0;
    QString m_name;
};

} // namespace values
