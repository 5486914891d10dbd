#pragma once

#include "apps/receiver/input.h"

#include <QIODevice>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace receiver {

/// Where a hop's first frequency lies in its first channel: hackrf_sweep gives the lower edge,
/// rtl_power the centre.
enum class BinPlace { edge, center };

/// One line of a sweep file.
struct SweepRow {
    std::string_view stamp; ///< date and time as they stand in the line, local time
    double low = 0;         ///< Hz
    double high = 0;        ///< Hz
    double step = 0;        ///< Hz, rounded by the writers
    double samples = 0;
    std::vector<float> values; ///< dB; NaN for "inf" and "nan", which mean no value
};

/// Reads one line into \a row, whose stamp points into \a line. Returns what is wrong with it, or
/// an empty text. Never throws.
const char *parseSweepRow(std::string_view line, SweepRow &row);

/// Reads the stamps of a file, of which most repeat the second of the one before: to look up the
/// local time of each would take ten times as long as to read its line.
class SweepStamps {
public:
    /// Microseconds since 1970 UTC of "2026-11-21, 10:00:00.5", read as local time, 0 for what lies
    /// before; nullopt when it is no date and time.
    std::optional<KRTimeStamp> read(std::string_view stamp);

private:
    std::string m_second; // the last stamp up to its fraction
    std::optional<KRTimeStamp> m_time;
};

/// Sweep files of rtl_power and hackrf_sweep, and of writers that imitate them.
///
/// Hops are placed by frequency, whatever their order. A scan is one sweep; channels whose hop is
/// missing have no value. rtl_power repeats the last value of each line: the repeat is dropped.
/// A broken or cut-off line is skipped, counted and noted once with its number; so is one that
/// has another number of levels than most lines of its hop. A first line none of whose fields is a
/// number is a header, and a byte-order mark before it is passed over. Levels are the file's dB
/// plus the full-scale level.
class SweepReader : public Input {
public:
    /// Reads the whole file to find all hops: once, or twice when a hop's first line was the odd
    /// one. \a name goes into messages.
    /// \throws Failure when the device has no readable line, or isn't random-access
    SweepReader(std::unique_ptr<QIODevice> device, const QString &name, double fullScaleDbuv,
                Note note);

    const Grid &grid() const override { return m_grid; }
    bool read(Scan &scan) override;
    void rewind() override;
    double period() const override { return 0; }

    /// Broken lines of the file.
    std::uint64_t brokenLines() const { return m_broken; }

private:
    struct Hop {
        double center = 0, step = 0; // of the first channel
        std::uint32_t columns = 0;   // values as written, a repeated last one included
        std::uint32_t count = 0;     // channels; 0 until they are laid out
        std::size_t offset = 0;      // index of the first channel in the scan
        std::uint64_t sweep = 0;     // the last sweep that filled it
        std::map<std::uint32_t, std::uint64_t> lines; // read so far, by values
    };
    using HopKey = std::pair<double, double>; // low, high

    void survey();
    void addHops();
    const char *addHop(const SweepRow &row);
    void layOutHop(const SweepRow &row, Hop &hop) const;
    bool settleColumns();
    void layOutGrid();
    bool nextLine();
    const char *parseLine();
    /// The next good row into m_row; false at the end.
    bool nextRow();
    void noteBroken(const char *what);
    Hop &hopOfRow();
    bool startsNewSweep(const Hop &hop) const;
    void put(Hop &hop, Scan &scan);

    std::unique_ptr<QIODevice> m_device;
    QString m_name;
    double m_fullScale;
    Note m_note;
    BinPlace m_place = BinPlace::center;
    std::map<HopKey, Hop> m_hops;
    std::optional<HopKey> m_firstHop;
    Grid m_grid;
    std::size_t m_channels = 0;

    std::string m_buffer;    // grows to the longest line
    std::string_view m_line; // the current line, in m_buffer
    std::uint64_t m_lineNumber = 0;
    std::uint64_t m_broken = 0;
    std::vector<QString> m_brokenNotes; // of the first few
    SweepRow m_row;
    SweepStamps m_stamps;
    KRTimeStamp m_time = 0;    // of m_row
    bool m_rowPending = false; // m_row belongs to the sweep that comes next
    std::string m_sweepStamp;
    std::uint64_t m_sweep = 0;
};

} // namespace receiver
