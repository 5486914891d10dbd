#pragma once

#include "platform/base/types.h"

#include <cstddef>
#include <span>
#include <vector>

namespace monitor {

/// The waterfall of a whole run in bounded memory. When it is full, neighbouring rows become one
/// (the higher level of each pixel wins), and from then on each row holds twice as many scans: a
/// long run gets coarser in time, but never loses its beginning or a burst.
///
/// Levels are dBuV, NaN where nothing is known. Not thread-safe: one owner, one thread.
class RowHistory {
public:
    struct Row {
        KRTimeStamp first = 0; ///< time of the oldest scan in it
        KRTimeStamp last = 0;  ///< time of the newest
        std::vector<float> levels;
    };

    explicit RowHistory(std::size_t capacity = 2048);
    /// A row with a width of its own, or older than the newest, begins a new history: neither can
    /// stand in one picture with what was there.
    void add(KRTimeStamp time, std::span<const float> levels);
    void clear();
    /// Oldest first; the last one may still be growing.
    const std::vector<Row> &rows() const { return m_rows; }
    /// Scans a row.
    std::size_t scansPerRow() const { return m_scansPerRow; }

private:
    void halve();

    const std::size_t m_capacity;
    std::vector<Row> m_rows;
    std::size_t m_scansPerRow = 1;
    std::size_t m_scansInNewest = 0;
};

} // namespace monitor
