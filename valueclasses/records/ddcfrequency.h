#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// The setting of one digital down-converter.
struct DdcFrequency {
    int channel = 0;        ///< the number of the down-converter
    double frequency = 0.0; ///< Hz, its centre
    double bandwidth = 0.0; ///< Hz
    QString demodulation;   ///< as "AM" or "FM"

    bool operator==(const DdcFrequency &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.channel, record.frequency, record.bandwidth, record.demodulation);
    }
};

class SPECTREE_EXPORT FormatDdcFrequency {
public:
    static QString GetString(const DdcFrequency &record);
    static DdcFrequency GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_PRINTED_RECORD(values::DdcFrequency, values::FormatDdcFrequency)
