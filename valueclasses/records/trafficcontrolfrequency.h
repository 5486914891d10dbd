#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// A channel of a traffic control service (air, sea, rail).
struct TrafficControlFrequency {
    double frequency = 0.0; ///< Hz
    double bandwidth = 0.0; ///< Hz
    int squelch = 0;        ///< 1/10 dBµV
    QString service;        ///< as "Tower" or "Approach"

    bool operator==(const TrafficControlFrequency &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.frequency, record.bandwidth, record.squelch, record.service);
    }
};

class SPECTREE_EXPORT FormatTrafficControlFrequency {
public:
    static QString GetString(const TrafficControlFrequency &record);
    static TrafficControlFrequency GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::TrafficControlFrequency, values::FormatTrafficControlFrequency)
