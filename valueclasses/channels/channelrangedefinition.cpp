#include "valueclasses/channels/channelrangedefinition.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace values {
namespace {

// A channel's edge belongs to it also where rounding moved it by one unit in the last place.
double lowEdge(const ChannelRange &range)
{
    return range.GetFirstStartFrequency() * 0.9999999999999998;
}
double highEdge(const ChannelRange &range)
{
    return range.GetLastStopFrequency() * 1.0000000000000002;
}

} // namespace

DuplicateChannelIdException::~DuplicateChannelIdException() = default;
InvalidChannelIdException::~InvalidChannelIdException() = default;

ChannelRangeDefinition::ChannelRangeDefinition(ChannelRangeDefinition &&other) noexcept
{
    *this = std::move(other);
}

ChannelRangeDefinition &ChannelRangeDefinition::operator=(ChannelRangeDefinition &&other) noexcept
{
    // Swapped, so that the source keeps a consistent state.
    m_ranges.swap(other.m_ranges);
    m_indexed.swap(other.m_indexed);
    std::swap(m_channelCount, other.m_channelCount);
    std::swap(m_ascending, other.m_ascending);
    return *this;
}

ChannelRangeDefinition::~ChannelRangeDefinition() = default;

int ChannelRangeDefinition::AddRangeDefinition(unsigned int firstChannelId,
                                               unsigned int channelCount,
                                               double firstCenterFrequency, double frequencyStep,
                                               QString name)
{
    return addRange(
        {firstChannelId, channelCount, firstCenterFrequency, frequencyStep, std::move(name)});
}

int ChannelRangeDefinition::AddRangeDefinition(unsigned int firstChannelId, double startFrequency,
                                               double frequencyStep, double stopFrequency,
                                               QString name)
{
    return addRange(
        {firstChannelId, startFrequency, frequencyStep, stopFrequency, std::move(name)});
}

int ChannelRangeDefinition::AddRangeDefinition(unsigned int firstChannelId, double frequency,
                                               double frequencyStep, QString name)
{
    return addRange({firstChannelId, frequency, frequencyStep, std::move(name)});
}

int ChannelRangeDefinition::addRange(ChannelRange range)
{
    int key = 0;
    while (m_ranges.count(key) != 0)
        ++key;
    m_ranges.emplace(key, std::move(range));
    rebuildIndex();
    checkDuplicates();
    return key;
}

void ChannelRangeDefinition::RemoveRangeDefinitionByKey(int key)
{
    if (m_ranges.erase(key) != 0)
        rebuildIndex();
}

void ChannelRangeDefinition::SetChannelRangeMap(const RangeMap &ranges)
{
    m_ranges = ranges;
    rebuildIndex();
    checkDuplicates();
}

bool ChannelRangeDefinition::IsFinite() const
{
    return std::ranges::all_of(m_indexed, [](const IndexedRange &range) {
        return std::isfinite(range.firstCenterFrequency) && std::isfinite(range.frequencyStep);
    });
}

void ChannelRangeDefinition::clear()
{
    m_ranges.clear();
    rebuildIndex();
}

void ChannelRangeDefinition::checkDuplicates() const
{
    // Sorted: a definition from outside may hold 500 000 ranges, too many to compare all pairs.
    std::vector<const ChannelRange *> ranges;
    ranges.reserve(m_ranges.size());
    for (const auto &[key, range] : m_ranges)
        if (range.GetChannelCount() != 0)
            ranges.push_back(&range);
    std::sort(ranges.begin(), ranges.end(), [](const ChannelRange *a, const ChannelRange *b) {
        return a->GetFirstChannelId() < b->GetFirstChannelId();
    });
    const auto share = [](const ChannelRange *a, const ChannelRange *b) {
        return a->SharesIdsWith(*b);
    };
    if (std::adjacent_find(ranges.begin(), ranges.end(), share) != ranges.end())
        throw DuplicateChannelIdException();
}

void ChannelRangeDefinition::rebuildIndex()
{
    m_indexed.clear();
    m_indexed.reserve(m_ranges.size());
    m_channelCount = 0;
    m_ascending = true;
    for (const auto &[key, range] : m_ranges) {
        // Ranges that share ids may sum up to more than an index can count.
        const unsigned int left = std::numeric_limits<unsigned int>::max() - m_channelCount;
        const unsigned int count = std::min(range.GetChannelCount(), left);
        if (!m_indexed.empty() && !m_indexed.back().LiesBelow(range.GetFirstChannelId()))
            m_ascending = false;
        m_indexed.push_back({m_channelCount, range.GetFirstChannelId(), count,
                             range.GetFirstCenterFrequency(), range.GetFrequencyStep(), key});
        m_channelCount += count;
    }
}

const ChannelRangeDefinition::IndexedRange *
ChannelRangeDefinition::FindIndexedRange(unsigned int id) const
{
    const auto holds = [id](const IndexedRange &range) { return range.HoldsChannelId(id); };
    const auto behind = [id](const IndexedRange &range) { return range.LiesBelow(id); };
    const auto found = m_ascending
                           ? std::partition_point(m_indexed.begin(), m_indexed.end(), behind)
                           : std::find_if(m_indexed.begin(), m_indexed.end(), holds);
    return found == m_indexed.end() || !holds(*found) ? nullptr : &*found;
}

const ChannelRangeDefinition::IndexedRange &
ChannelRangeDefinition::GetIndexedRangeForChannelId(unsigned int id) const
{
    const IndexedRange *range = FindIndexedRange(id);
    if (range == nullptr)
        throw InvalidChannelIdException();
    return *range;
}

const ChannelRange &ChannelRangeDefinition::GetChannelRange(int key) const
{
    const auto found = m_ranges.find(key);
    if (found == m_ranges.end())
        throw std::out_of_range("invalid map<K, T> key");
    return found->second;
}

std::vector<int> ChannelRangeDefinition::GetKeyVector() const
{
    std::vector<int> keys;
    keys.reserve(m_ranges.size());
    std::transform(m_ranges.begin(), m_ranges.end(), std::back_inserter(keys),
                   [](const auto &entry) { return entry.first; });
    return keys;
}

unsigned int ChannelRangeDefinition::GetMinChannelId() const
{
    unsigned int least = std::numeric_limits<unsigned int>::max();
    for (const IndexedRange &range : m_indexed)
        if (range.channelCount != 0)
            least = std::min(least, range.firstChannelId);
    return m_channelCount == 0 ? 0 : least;
}

unsigned int ChannelRangeDefinition::GetMaxChannelId() const
{
    unsigned int greatest = 0;
    for (const IndexedRange &range : m_indexed)
        if (range.channelCount != 0)
            greatest = std::max(greatest, range.firstChannelId + (range.channelCount - 1));
    return greatest;
}

double ChannelRangeDefinition::GetMinCenterFrequency() const
{
    double least = std::numeric_limits<double>::max();
    for (const auto &[key, range] : m_ranges)
        least = std::min(least, range.GetFirstCenterFrequency());
    return least;
}

double ChannelRangeDefinition::GetMaxCenterFrequency() const
{
    double greatest = std::numeric_limits<double>::lowest();
    for (const auto &[key, range] : m_ranges)
        greatest = std::max(greatest, range.GetLastCenterFrequency());
    return greatest;
}

double ChannelRangeDefinition::ChannelIdToFrequency(unsigned int id) const
{
    const IndexedRange &range = GetIndexedRangeForChannelId(id);
    return range.FrequencyOfIndex(range.IndexOfChannelId(id));
}

unsigned int ChannelRangeDefinition::ChannelIdToIndex(unsigned int id) const
{
    return GetIndexedRangeForChannelId(id).IndexOfChannelId(id);
}

const ChannelRange &ChannelRangeDefinition::GetRangeForChannelId(unsigned int id) const
{
    return m_ranges.at(GetIndexedRangeForChannelId(id).key);
}

int ChannelRangeDefinition::GetRangeKeyForChannelId(unsigned int id) const
{
    return GetIndexedRangeForChannelId(id).key;
}

double ChannelRangeDefinition::GetFrequencyStepForChannelId(unsigned int id) const
{
    return GetIndexedRangeForChannelId(id).frequencyStep;
}

unsigned int ChannelRangeDefinition::IndexToChannelId(unsigned int index) const
{
    return IndexToChannelIdAndFrequency(index).first;
}

std::pair<unsigned int, double>
ChannelRangeDefinition::IndexToChannelIdAndFrequency(unsigned int index) const
{
    if (index >= m_channelCount)
        throw std::out_of_range("invalid channel index");
    // The last that begins at or before the index; it has channels, since the one behind it begins
    // later.
    const auto range =
        std::upper_bound(m_indexed.begin(), m_indexed.end(), index,
                         [](unsigned i, const IndexedRange &one) { return i < one.firstIndex; }) -
        1;
    return {range->firstChannelId + (index - range->firstIndex), range->FrequencyOfIndex(index)};
}

std::vector<double> ChannelRangeDefinition::Frequencies() const
{
    std::vector<double> frequencies;
    frequencies.reserve(m_channelCount);
    for (const IndexedRange &range : m_indexed)
        for (unsigned int i = 0; i < range.channelCount; ++i)
            frequencies.push_back(range.FrequencyOfIndex(range.firstIndex + i));
    return frequencies;
}

double ChannelRangeDefinition::GetFrequencyStep4Frequency(double frequency) const
{
    double least = -1.0;
    for (const auto &[key, range] : m_ranges) {
        const bool spans = range.GetFirstCenterFrequency() <= frequency &&
                           frequency <= range.GetLastCenterFrequency();
        if (spans && (least == -1.0 || range.GetFrequencyStep() < least))
            least = range.GetFrequencyStep();
    }
    return least;
}

std::vector<unsigned int>
ChannelRangeDefinition::GetClosestChannelIdsForFrequency(double frequency) const
{
    std::vector<unsigned int> ids;
    for (const auto &[key, range] : m_ranges)
        if (range.GetChannelCount() != 0 && lowEdge(range) <= frequency &&
            frequency <= highEdge(range))
            ids.push_back(range.GetClosestChannelIdForFrequency(frequency));
    return ids;
}

std::vector<unsigned int>
ChannelRangeDefinition::GetClosestChannelIdsForFrequencyRange(double from, double to) const
{
    std::vector<unsigned int> ids;
    for (const auto &[key, range] : m_ranges) {
        if (range.GetChannelCount() == 0 || !(to >= lowEdge(range) && highEdge(range) >= from))
            continue;
        ids.push_back(range.GetClosestChannelIdForFrequency(from));
        ids.push_back(range.GetClosestChannelIdForFrequency(to));
    }
    return ids;
}

bool ChannelRangeDefinition::GetClosestChannelCenterFrequency(double &frequency) const
{
    const auto ids = GetClosestChannelIdsForFrequency(frequency);
    // All 2^32 ids together are one more than there are indices: the last has no channel.
    if (ids.empty() || FindIndexedRange(ids.front()) == nullptr)
        return false;
    frequency = ChannelIdToFrequency(ids.front());
    return true;
}

Kelm::Long ChannelRangeDefinition::FindStartChannel4RangeDefinition(double start, double step,
                                                                    double stop) const
{
    for (const auto &[key, range] : m_ranges)
        if (range.GetFirstCenterFrequency() == start && range.GetFrequencyStep() == step &&
            range.GetLastCenterFrequency() == stop)
            return std::int32_t(range.GetFirstChannelId());
    return -1;
}

Kelm::Long ChannelRangeDefinition::FindFirstChannel4RangeDefinition(double start, double step,
                                                                    double stop) const
{
    for (const auto &[key, range] : m_ranges) {
        const double first = range.GetFirstCenterFrequency(), last = range.GetLastCenterFrequency();
        if (first <= start && start <= last && first <= stop && stop <= last &&
            std::abs(range.GetFrequencyStep() - step) <= 1e-07)
            return std::int32_t(range.GetFirstChannelId());
    }
    return -1;
}

bool ChannelRangeDefinition::operator==(const ChannelRangeDefinition &other) const
{
    return m_ranges == other.m_ranges;
}

} // namespace values
