#pragma once

#include "valueclasses/records/record.h"

#include <vector>

namespace values {

/// One point of a frequency mask.
struct FrequencyMaskPoint {
    bool active = false; ///< an inactive point bounds nothing
    int level = 0;       ///< 1/10 dBµV

    bool operator==(const FrequencyMaskPoint &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.active, record.level);
    }
};

/// A line of levels over a band, at equal distances, that a signal must not pass.
struct FrequencyMask {
    int number = 0;
    std::int64_t frequency = 0; ///< Hz, of the first point
    std::int64_t step = 0;      ///< Hz, between two points
    int hysteresis = 0;         ///< 1/10 dB
    QString name;
    QString comment;
    std::vector<FrequencyMaskPoint> points;

    bool operator==(const FrequencyMask &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.number, record.frequency, record.step, record.hysteresis,
                        record.name, record.comment, record.points);
    }
};

/// A "#" in name or comment can't be printed: such a text isn't read, or not as it was.
class SPECTREE_EXPORT FormatFrequencyMask {
public:
    static QString GetString(const FrequencyMask &record);
    static FrequencyMask GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::FrequencyMask, values::FormatFrequencyMask)
