#pragma once

#include "valueclasses/records/record.h"
#include "valueclasses/value.h"

namespace values {

/// One bearing of a direction finder. Its text keeps six digits of the frequency.
struct BearingResult {
    double frequency = 0.0;  ///< Hz
    int azimuth = 0;         ///< 1/100 degree, clockwise from north
    int elevation = 0;       ///< 1/100 degree above the horizon
    int quality = 0;         ///< percent
    int level = 0;           ///< 1/10 dBµV
    int bandwidth = 0;       ///< Hz
    int integrationTime = 0; ///< ms
    int count = 0;           ///< the measurements that it was taken from

    bool operator==(const BearingResult &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.frequency, record.azimuth, record.elevation, record.quality,
                        record.level, record.bandwidth, record.integrationTime, record.count);
    }
};

class SPECTREE_EXPORT FormatBearingResult {
public:
    static QString GetString(const BearingResult &record);
    static BearingResult GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::BearingResult, values::FormatBearingResult)

namespace values {

template <>
struct ScalarKind<BearingResult> {
    static constexpr ValueType kType = VTYPE_ValueBearingResult;
    static constexpr const char *kTypeName = "ValueBearingResult";
};
extern template class SPECTREE_EXPORT CommandSetValue<BearingResult>;
extern template class SPECTREE_EXPORT Value<BearingResult>;

} // namespace values
