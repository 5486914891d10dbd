#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// A well-known frequency: an emission that is no news.
struct Wkf {
    QString name;
    double frequency = 0.0; ///< Hz
    double bandwidth = 0.0; ///< Hz
    int category = 0;       ///< as the application numbers them

    bool operator==(const Wkf &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.name, record.frequency, record.bandwidth, record.category);
    }
};

class SPECTREE_EXPORT FormatWkf {
public:
    static QString GetString(const Wkf &record);
    static Wkf GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_PRINTED_RECORD(values::Wkf, values::FormatWkf)
