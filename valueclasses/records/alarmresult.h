#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// A signal that raised an alarm.
struct AlarmResult {
    int number = 0;         ///< of the alarm
    int kind = 0;           ///< the rule that raised it, as the application numbers them
    double frequency = 0.0; ///< Hz
    double bandwidth = 0.0; ///< Hz
    int level = 0;          ///< 1/10 dBµV
    int threshold = 0;      ///< that was passed, 1/10 dBµV
    double startTime = 0.0; ///< seconds since 1970, UTC
    double stopTime = 0.0;  ///< the same; 0 while it lasts
    QString message;

    bool operator==(const AlarmResult &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.number, record.kind, record.frequency, record.bandwidth,
                        record.level, record.threshold, record.startTime, record.stopTime,
                        record.message);
    }
};

class SPECTREE_EXPORT FormatAlarmResult {
public:
    static QString GetString(const AlarmResult &record);
    static AlarmResult GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::AlarmResult, values::FormatAlarmResult)
