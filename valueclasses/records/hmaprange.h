#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// A range of a display's horizontal axis.
struct HMapRange {
    double start = 0.0; ///< in units of the axis, as a rule Hz
    double stop = 0.0;

    bool operator==(const HMapRange &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.start, record.stop);
    }
};

/// A range of a display's horizontal axis, from a level on upwards.
struct HVMapRange {
    double start = 0.0; ///< in units of the horizontal axis, as a rule Hz
    double stop = 0.0;
    double minimum = 0.0; ///< in units of the vertical axis, as a rule dBµV

    bool operator==(const HVMapRange &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.start, record.stop, record.minimum);
    }
};

/// Both throw KRException "! sToken.isEmpty()" where a field is missing.
class SPECTREE_EXPORT FormatHMapRange {
public:
    static QString GetString(const HMapRange &record);
    static HMapRange GetValue(const QString &text);
};

class SPECTREE_EXPORT FormatHVMapRange {
public:
    static QString GetString(const HVMapRange &record);
    static HVMapRange GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::HMapRange, values::FormatHMapRange)
SPECTREE_DECLARE_RECORD(values::HVMapRange, values::FormatHVMapRange)
