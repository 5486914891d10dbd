#pragma once

#include "valueclasses/records/record.h"

namespace values {

/// A span of time of which a recorder has data.
class SPECTREE_EXPORT RecordRanges {
public:
    RecordRanges() = default;
    RecordRanges(int recorder, std::int64_t begin, std::int64_t end)
        : m_recorder(recorder), m_begin(begin), m_end(end)
    {
    }

    /// The number of the recorder.
    int GetRecorder() const { return m_recorder; }
    /// Microseconds since 1970, UTC.
    std::int64_t GetBegin() const { return m_begin; }
    std::int64_t GetEnd() const { return m_end; }

    bool operator==(const RecordRanges &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.m_recorder, record.m_begin, record.m_end);
    }

private:
    int m_recorder = 0;
    std::int64_t m_begin = 0;
    std::int64_t m_end = 0;
};

class SPECTREE_EXPORT FormatRecordRanges {
public:
    static QString GetString(const RecordRanges &record);
    static RecordRanges GetValue(const QString &text);
};

} // namespace values

/// The image is 24 bytes: four zeros follow the number of the recorder.
SPECTREE_DECLARE_PRINTED_RECORD(values::RecordRanges, values::FormatRecordRanges)
