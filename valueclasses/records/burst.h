#pragma once

#include "valueclasses/records/record.h"

namespace IPC {

/// One transmission of a signal that comes in bursts.
struct Burst {
    KRTimeStamp startTime = 0;  ///< microseconds since 1970, UTC
    std::uint32_t duration = 0; ///< microseconds
    double frequency = 0.0;     ///< Hz, its centre
    double bandwidth = 0.0;     ///< Hz
    int level = 0;              ///< 1/10 dBµV
    int azimuth = 0;            ///< 1/10 degree, clockwise from north

    bool operator==(const Burst &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.startTime, record.duration, record.frequency, record.bandwidth,
                        record.level, record.azimuth);
    }
};

class SPECTREE_EXPORT FormatBurst {
public:
    static QString GetString(const Burst &record);
    static Burst GetValue(const QString &text);
};

/// One bar of a histogram of burst durations.
struct BurstHistResult {
    std::uint32_t duration = 0; ///< microseconds, the middle of the bar
    std::uint32_t count = 0;    ///< bursts that fell into it

    bool operator==(const BurstHistResult &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.duration, record.count);
    }
};

class SPECTREE_EXPORT FormatBurstHistResult {
public:
    static QString GetString(const BurstHistResult &record);
    static BurstHistResult GetValue(const QString &text);
};

} // namespace IPC

SPECTREE_DECLARE_RECORD(IPC::Burst, IPC::FormatBurst)
SPECTREE_DECLARE_RECORD(IPC::BurstHistResult, IPC::FormatBurstHistResult)
