#include "apps/receiver/sweepreader.h"

#include "apps/common/failure.h"

#include <QDateTime>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace receiver {

using apps::Failure;

namespace {

// The longest line that any writer makes is some 20 MB (two million values).
constexpr std::size_t kLongestLine = 64 << 20;
constexpr std::uint64_t kNotesOfBrokenLines = 5;
constexpr float kNoValue = std::numeric_limits<float>::quiet_NaN();

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return text.substr(0, 0); // parseSweepRow() measures from its place in the line
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// Cuts the text before the next comma off \a rest. False when nothing is left.
bool nextField(std::string_view &rest, std::string_view &field)
{
    if (rest.data() == nullptr)
        return false;
    const auto comma = rest.find(',');
    field = trimmed(rest.substr(0, comma));
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    return true;
}

template <typename T>
bool parseNumber(std::string_view text, T &number)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

/// "-inf", "nan", "-nan(ind)" and "-1.#IND" all come from the logarithm of nothing.
bool meansNoValue(std::string_view text)
{
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    return text.starts_with("inf") || text.starts_with("nan") || text.starts_with("1.#") ||
           text.starts_with("Inf") || text.starts_with("NaN");
}

bool parseLevel(std::string_view text, float &level)
{
    if (meansNoValue(text)) {
        level = kNoValue;
        return true;
    }
    return parseNumber(text, level) && std::isfinite(level);
}

bool parseFrequency(std::string_view text, double &frequency)
{
    return parseNumber(text, frequency) && std::isfinite(frequency) && std::abs(frequency) < 1e15;
}

bool equalLevels(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }

/// Values that the frequencies of the row ask for.
double expectedLevels(const SweepRow &row)
{
    return std::max(1.0, std::round((row.high - row.low) / row.step));
}

/// hackrf_sweep writes a quarter of its transform's width a line; rtl_power's sample count has
/// nothing to do with the width.
BinPlace binPlaceOf(const SweepRow &row)
{
    const double width = row.high - row.low;
    return std::abs(row.samples * row.step - 4 * width) < 1e-3 * 4 * width ? BinPlace::edge
                                                                           : BinPlace::center;
}

bool holdsNumber(std::string_view line)
{
    std::string_view field;
    double number = 0;
    while (nextField(line, field))
        if (parseFrequency(field, number))
            return true;
    return false;
}

/// Microseconds since 1970 UTC of a local time in whole seconds.
std::optional<KRTimeStamp> parseSecond(std::string_view stamp)
{
    std::string_view rest = stamp, date, time;
    if (!nextField(rest, date) || !nextField(rest, time))
        return std::nullopt;
    const auto text = [](std::string_view s) {
        return QString::fromLatin1(s.data(), int(s.size()));
    };
    const QDate day = QDate::fromString(text(date), Qt::ISODate);
    const QTime clock = QTime::fromString(text(time), Qt::ISODate);
    if (!day.isValid() || !clock.isValid())
        return std::nullopt;
    // Below 0 is a clock that was never set, read further east.
    const qint64 milliseconds = QDateTime(day, clock, Qt::LocalTime).toMSecsSinceEpoch();
    return KRTimeStamp(std::max<qint64>(milliseconds, 0)) * 1000;
}

} // namespace

const char *parseSweepRow(std::string_view line, SweepRow &row)
{
    row.values.clear();
    std::string_view rest = line, date, time, field;
    if (!nextField(rest, date) || !nextField(rest, time))
        return "it has no date and time";
    row.stamp = {date.data(), std::size_t(time.data() + time.size() - date.data())};
    for (double *number : {&row.low, &row.high, &row.step, &row.samples})
        if (!nextField(rest, field) || !parseFrequency(field, *number))
            return "a number is missing among its first six fields";
    if (!(row.high > row.low) || !(row.step > 0))
        return "its frequencies do not rise";
    float level = 0;
    while (nextField(rest, field)) {
        if (!parseLevel(field, level))
            return "one of its levels is no number";
        row.values.push_back(level);
    }
    return row.values.empty() ? "it has no levels" : "";
}

std::optional<KRTimeStamp> SweepStamps::read(std::string_view stamp)
{
    const auto dot = std::min(stamp.find('.'), stamp.size());
    if (const auto second = stamp.substr(0, dot); second != m_second) {
        m_second = second;
        m_time = parseSecond(second);
    }
    double fraction = 0;
    if (dot < stamp.size() && !(parseNumber(stamp.substr(dot), fraction) && fraction < 1))
        return std::nullopt;
    return m_time ? std::optional(*m_time + KRTimeStamp(std::llround(fraction * 1e6)))
                  : std::nullopt;
}

SweepReader::SweepReader(std::unique_ptr<QIODevice> device, const QString &name,
                         double fullScaleDbuv, Note note)
    : m_device(std::move(device)), m_name(name), m_fullScale(fullScaleDbuv), m_note(std::move(note))
{
    if (m_device->isSequential())
        throw Failure(Failure::Runtime,
                      QStringLiteral("%1 is a pipe, but a sweep file is read twice: save it to a "
                                     "file first.")
                          .arg(m_name));
    survey();
    layOutGrid();
    rewind();
}

void SweepReader::survey()
{
    addHops();
    if (settleColumns()) {
        rewind();
        m_broken = 0;
        m_brokenNotes.clear();
        addHops();
    }
    for (const QString &note : m_brokenNotes)
        m_note(note);
    if (m_hops.empty())
        throw Failure(Failure::Runtime,
                      QStringLiteral("%1 holds no sweep: not one of its %2 lines reads as \"date, "
                                     "time, Hz low, Hz high, Hz step, samples, dB, dB, ...\".")
                          .arg(m_name)
                          .arg(m_lineNumber));
    if (m_broken > kNotesOfBrokenLines)
        m_note(QStringLiteral("%1: %2 broken lines are skipped in all.").arg(m_name).arg(m_broken));
}

void SweepReader::addHops()
{
    while (nextLine()) {
        if (trimmed(m_line).empty() || (m_lineNumber == 1 && !holdsNumber(m_line)))
            continue;
        const char *wrong = parseLine();
        if (!*wrong)
            wrong = addHop(m_row);
        if (*wrong)
            noteBroken(wrong);
    }
}

/// Counts the row to its hop. Returns what is wrong with it, or an empty text.
const char *SweepReader::addHop(const SweepRow &row)
{
    const HopKey key(row.low, row.high);
    const auto columns = std::uint32_t(row.values.size());
    const auto known = m_hops.find(key);
    if (known == m_hops.end() || known->second.columns != columns)
        if (columns < expectedLevels(row))
            return "it has fewer levels than its frequencies ask for";
    if (!m_firstHop) {
        m_firstHop = key;
        m_place = binPlaceOf(row);
    }
    Hop &hop = m_hops[key];
    if (hop.columns == 0)
        hop.columns = columns;
    ++hop.lines[columns];
    if (hop.columns != columns)
        return "its number of levels is not that of the hop's other lines";
    if (hop.count == 0)
        layOutHop(row, hop);
    return "";
}

/// Gives each hop the number of levels that most of its lines have. False when all had it already.
bool SweepReader::settleColumns()
{
    bool changed = false;
    for (auto &[key, hop] : m_hops) {
        const auto most =
            std::max_element(hop.lines.begin(), hop.lines.end(),
                             [](const auto &a, const auto &b) { return a.second < b.second; });
        if (most->second > hop.lines[hop.columns]) {
            hop.columns = most->first;
            hop.count = 0;
            changed = true;
        }
    }
    return changed;
}

void SweepReader::layOutHop(const SweepRow &row, Hop &hop) const
{
    const double expected = expectedLevels(row);
    const std::uint32_t columns = hop.columns;
    const bool repeated =
        columns > expected && equalLevels(row.values[columns - 1], row.values[columns - 2]);
    hop.count = repeated ? columns - 1 : columns;
    // The written step is rounded; where the count fits, the width tells it exactly.
    hop.step = hop.count == expected ? (row.high - row.low) / hop.count : row.step;
    hop.center = m_place == BinPlace::edge
                     ? row.low + hop.step / 2
                     : (row.low + row.high) / 2 - std::floor(hop.count / 2.0) * hop.step;
    // An odd count has its middle channel on the middle frequency, except where one channel
    // stands for the whole width.
    if (m_place == BinPlace::center && hop.count == expected && hop.count > 1)
        hop.center = row.low;
}

void SweepReader::layOutGrid()
{
    std::vector<Hop *> hops;
    for (auto &[key, hop] : m_hops)
        hops.push_back(&hop);
    std::stable_sort(hops.begin(), hops.end(),
                     [](const Hop *a, const Hop *b) { return a->center < b->center; });
    for (Hop *hop : hops) {
        const Range *last = m_grid.empty() ? nullptr : &m_grid.back();
        const bool adjacent =
            last && std::abs(hop->step - last->step) < 1e-3 * last->step &&
            std::abs(hop->center - last->lastCenter() - last->step) < 0.25 * last->step;
        if (adjacent)
            m_grid.back().count += hop->count;
        else
            m_grid.push_back({hop->center, hop->step, hop->count});
        hop->offset = m_channels;
        m_channels += hop->count;
    }
}

void SweepReader::rewind()
{
    m_device->seek(0);
    m_lineNumber = 0;
    m_rowPending = false;
}

bool SweepReader::nextLine()
{
    std::size_t size = 0;
    do {
        if (m_buffer.size() < size + 2)
            m_buffer.resize(std::max<std::size_t>(1 << 16, 2 * size));
        const qint64 got = m_device->readLine(&m_buffer[size], qint64(m_buffer.size() - size));
        if (got <= 0)
            break;
        size += std::size_t(got);
    } while (m_buffer[size - 1] != '\n' && size < kLongestLine);
    m_line = {m_buffer.data(), size};
    m_lineNumber += size > 0;
    if (m_lineNumber == 1 && m_line.starts_with("\xEF\xBB\xBF"))
        m_line.remove_prefix(3);
    return size > 0;
}

/// Reads the current line into m_row and m_time. Returns what is wrong with it, or an empty text.
const char *SweepReader::parseLine()
{
    const char *const wrong = parseSweepRow(m_line, m_row);
    if (*wrong)
        return wrong;
    const auto time = m_stamps.read(m_row.stamp);
    if (!time)
        return "its date and time can't be read";
    m_time = *time;
    return "";
}

bool SweepReader::nextRow()
{
    while (nextLine()) {
        if (*parseLine())
            continue;
        const auto hop = m_hops.find({m_row.low, m_row.high});
        if (hop != m_hops.end() && hop->second.columns == m_row.values.size())
            return true;
    }
    return false;
}

void SweepReader::noteBroken(const char *what)
{
    if (++m_broken <= kNotesOfBrokenLines)
        m_brokenNotes.push_back(QStringLiteral("%1, line %2 is skipped: %3.")
                                    .arg(m_name)
                                    .arg(m_lineNumber)
                                    .arg(QLatin1String(what)));
}

SweepReader::Hop &SweepReader::hopOfRow() { return m_hops.find({m_row.low, m_row.high})->second; }

bool SweepReader::startsNewSweep(const Hop &hop) const
{
    // hackrf_sweep's clock moves on inside a sweep, rtl_power's does not. A hop that comes a second
    // time starts a sweep whose first line was lost.
    return hop.sweep == m_sweep || HopKey(m_row.low, m_row.high) == *m_firstHop ||
           (m_place == BinPlace::center && m_row.stamp != m_sweepStamp);
}

void SweepReader::put(Hop &hop, Scan &scan)
{
    hop.sweep = m_sweep;
    for (std::uint32_t i = 0; i < hop.count; ++i)
        scan.levels[hop.offset + i] = float(m_row.values[i] + m_fullScale);
}

bool SweepReader::read(Scan &scan)
{
    if (!m_rowPending && !nextRow())
        return false;
    m_rowPending = false;
    ++m_sweep;
    m_sweepStamp = m_row.stamp;
    scan.time = m_time;
    scan.directions.clear();
    scan.levels.assign(m_channels, kNoValue);
    put(hopOfRow(), scan);
    while (nextRow()) {
        m_rowPending = startsNewSweep(hopOfRow());
        if (m_rowPending)
            break;
        put(hopOfRow(), scan);
    }
    return true;
}

} // namespace receiver
