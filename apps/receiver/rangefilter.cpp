#include "apps/receiver/rangefilter.h"

#include "apps/common/failure.h"

#include <algorithm>
#include <cmath>

namespace receiver {

using apps::Failure;

namespace {

// Centres are sums of doubles: a range that names one exactly must find it.
constexpr double kTolerance = 1e-6;

template <typename T>
void append(std::vector<T> &to, const std::vector<T> &from, std::size_t first, std::size_t count)
{
    if (!from.empty())
        to.insert(to.end(), from.begin() + std::ptrdiff_t(first),
                  from.begin() + std::ptrdiff_t(first + count));
}

} // namespace

RangeFilter::RangeFilter(std::unique_ptr<Input> source, const std::vector<FrequencyRange> &wanted)
    : m_source(std::move(source))
{
    for (const FrequencyRange &range : wanted)
        cut(range);
}

void RangeFilter::cut(const FrequencyRange &wanted)
{
    const std::size_t before = m_grid.size();
    std::size_t offset = 0;
    for (const Range &range : m_source->grid()) {
        const double last = range.count - 1.0;
        const double from = std::ceil((wanted.start - range.firstCenter) / range.step - kTolerance);
        const double to = std::floor((wanted.stop - range.firstCenter) / range.step + kTolerance);
        const double first = std::max(from, 0.0);
        if (const double count = std::min(to, last) - first + 1; count >= 1) {
            m_grid.push_back(
                {range.firstCenter + first * range.step, range.step, std::uint32_t(count)});
            m_pieces.push_back({offset + std::size_t(first), std::size_t(count)});
        }
        offset += range.count;
    }
    if (m_grid.size() == before)
        throw Failure(Failure::Usage,
                      QStringLiteral("--ranges: the input has no channel from %1 to %2 Hz; it "
                                     "covers %3 to %4 Hz.")
                          .arg(wanted.start, 0, 'f', 0)
                          .arg(wanted.stop, 0, 'f', 0)
                          .arg(m_source->grid().front().firstCenter, 0, 'f', 0)
                          .arg(m_source->grid().back().lastCenter(), 0, 'f', 0));
}

bool RangeFilter::read(Scan &scan)
{
    if (!m_source->read(m_whole))
        return false;
    scan.time = m_whole.time;
    scan.levels.clear();
    scan.directions.clear();
    for (const Piece &piece : m_pieces) {
        append(scan.levels, m_whole.levels, piece.from, piece.count);
        append(scan.directions, m_whole.directions, piece.from, piece.count);
    }
    return true;
}

} // namespace receiver
