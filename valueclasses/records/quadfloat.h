#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// Four numbers, whose meaning is the list's.
struct QuadFloat {
    double first = 0.0;
    double second = 0.0;
    double third = 0.0;
    double fourth = 0.0;

    bool operator==(const QuadFloat &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.first, record.second, record.third, record.fourth);
    }
};

class SPECTREE_EXPORT QuadFloatFormat {
public:
    static QString GetString(const QuadFloat &record);
    static QuadFloat GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::QuadFloat, values::QuadFloatFormat)
