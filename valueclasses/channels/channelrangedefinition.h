#pragma once

#include "platform/base/types.h"
#include "valueclasses/channels/channelrange.h"
#include "valueclasses/samples/structureimage.h"

#include <exception>
#include <map>
#include <utility>
#include <vector>

class axisDefinition;

namespace values {

/// Two ranges share a channel id.
class SPECTREE_EXPORT DuplicateChannelIdException : public std::exception {
public:
    ~DuplicateChannelIdException() override;
};

/// No range holds the channel id.
class SPECTREE_EXPORT InvalidChannelIdException : public std::exception {
public:
    ~InvalidChannelIdException() override;
};

/// The channel grid of a scan: maps channel id, channel index and frequency.
///
/// Ranges stand under integer keys, and no two share a channel id. The channel index is dense and
/// counts through the ranges in key order, whatever their ids and frequencies are.
/// A plain value without locks: its owner guards it, and threads get copies.
class SPECTREE_EXPORT ChannelRangeDefinition {
public:
    using RangeMap = std::map<int, ChannelRange>;

    /// One range as it lies in the index order, for whoever walks many channels: the channel with
    /// index i, firstIndex <= i < firstIndex + channelCount, has the id
    /// firstChannelId + (i - firstIndex) and the centre
    /// firstCenterFrequency + (i - firstIndex) * frequencyStep.
    struct IndexedRange {
        unsigned int firstIndex;
        unsigned int firstChannelId;
        unsigned int channelCount;
        double firstCenterFrequency;
        double frequencyStep;
        int key;

        bool HoldsChannelId(unsigned int id) const
        {
            return id >= firstChannelId && id - firstChannelId < channelCount;
        }
        /// Whether each of its ids is smaller than \a id.
        bool LiesBelow(unsigned int id) const
        {
            return id >= firstChannelId && id - firstChannelId >= channelCount;
        }
        unsigned int IndexOfChannelId(unsigned int id) const
        {
            return firstIndex + (id - firstChannelId);
        }
        double FrequencyOfIndex(unsigned int index) const
        {
            return firstCenterFrequency + double(index - firstIndex) * frequencyStep;
        }
    };

    ChannelRangeDefinition() = default;
    ChannelRangeDefinition(const ChannelRangeDefinition &) = default;
    ChannelRangeDefinition(ChannelRangeDefinition &&other) noexcept;
    ChannelRangeDefinition &operator=(const ChannelRangeDefinition &) = default;
    ChannelRangeDefinition &operator=(ChannelRangeDefinition &&other) noexcept;
    virtual ~ChannelRangeDefinition();

    /// Each adds a range under the smallest free key from 0 on and returns that key; the arguments
    /// are those of the ChannelRange constructors.
    /// \throws DuplicateChannelIdException after the range was added: remove it, or drop the
    /// object.
    int AddRangeDefinition(unsigned int firstChannelId, unsigned int channelCount,
                           double firstCenterFrequency, double frequencyStep, QString name);
    int AddRangeDefinition(unsigned int firstChannelId, double startFrequency, double frequencyStep,
                           double stopFrequency, QString name);
    int AddRangeDefinition(unsigned int firstChannelId, double frequency, double frequencyStep,
                           QString name);
    /// Does nothing for an unknown key.
    void RemoveRangeDefinitionByKey(int key);
    /// Replaces all ranges. \throws DuplicateChannelIdException after they were replaced.
    void SetChannelRangeMap(const RangeMap &ranges);
    void clear();
    bool empty() const { return m_ranges.empty(); }
    /// Whether each first centre and step is a finite number. A grid of others isn't served: with
    /// NaN it differs from its own copy.
    bool IsFinite() const;

    /// The ranges in index order, those without channels included. Valid until the next change.
    const std::vector<IndexedRange> &GetIndexedRanges() const { return m_indexed; }
    /// The range that holds \a id, or null.
    const IndexedRange *FindIndexedRange(unsigned int id) const;

    unsigned int GetChannelCount() const { return m_channelCount; }
    /// \throws std::out_of_range "invalid map<K, T> key"
    const ChannelRange &GetChannelRange(int key) const;
    /// All keys, ascending.
    std::vector<int> GetKeyVector() const;
    const RangeMap &GetChannelRangeMap() const { return m_ranges; }
    /// 0 when empty.
    unsigned int GetMinChannelId() const;
    unsigned int GetMaxChannelId() const;
    /// The smallest first and the greatest last centre; the largest, and the most negative, double
    /// when empty.
    double GetMinCenterFrequency() const;
    double GetMaxCenterFrequency() const;

    /// These six throw InvalidChannelIdException for an id that no range holds.
    double ChannelIdToFrequency(unsigned int id) const;
    unsigned int ChannelIdToIndex(unsigned int id) const;
    const ChannelRange &GetRangeForChannelId(unsigned int id) const;
    int GetRangeKeyForChannelId(unsigned int id) const;
    double GetFrequencyStepForChannelId(unsigned int id) const;
    const IndexedRange &GetIndexedRangeForChannelId(unsigned int id) const;

    /// \throws std::out_of_range "invalid channel index"
    unsigned int IndexToChannelId(unsigned int index) const;
    std::pair<unsigned int, double> IndexToChannelIdAndFrequency(unsigned int index) const;
    /// All centres in index order.
    std::vector<double> Frequencies() const;

    /// The smallest step of the ranges whose centres span \a frequency, -1.0 when there is none.
    double GetFrequencyStep4Frequency(double frequency) const;
    /// The closest id of each range that covers \a frequency, in key order. Empty is an answer: the
    /// frequency lies outside the grid.
    std::vector<unsigned int> GetClosestChannelIdsForFrequency(double frequency) const;
    /// Two ids for each range that touches the interval: closest to \a from, then closest to \a to.
    std::vector<unsigned int> GetClosestChannelIdsForFrequencyRange(double from, double to) const;
    /// Moves \a frequency to the centre of the first closest channel; false, and untouched, when it
    /// lies outside the grid.
    bool GetClosestChannelCenterFrequency(double &frequency) const;
    /// First id of the first range with exactly these first centre, step and last centre, or -1.
    Kelm::Long FindStartChannel4RangeDefinition(double start, double step, double stop) const;
    /// The same for a range that spans start and stop and whose step differs by at most 1e-07.
    Kelm::Long FindFirstChannel4RangeDefinition(double start, double step, double stop) const;

    /// A channel without a pixel in the table of CalcIndex2Pixel.
    static constexpr unsigned short kNoPixel = 0xFFFF;
    /// Fills two entries a channel in index order: the first and the last pixel of its band.
    /// Neighbours don't share a pixel as long as each keeps one. Returns the channel count, or -1,
    /// with \a pixels untouched, when the axis is not valid.
    int CalcIndex2Pixel(const axisDefinition &axis, std::vector<unsigned short> &pixels) const;

    /// Same keys and equal ranges; names play no part.
    bool operator==(const ChannelRangeDefinition &other) const;
    bool operator!=(const ChannelRangeDefinition &other) const { return !(*this == other); }

    /// The older string form, without names: 28 bytes a range, and ";".
    std::string toOldStandardString() const;
    /// Reads that form, or a still older one of 24 bytes a range without keys, which are 0, 1, 2
    /// ... then. Adds to the ranges, overwriting by key. \throws KRException when no ";" stands
    /// where it must or a frequency is not finite, DuplicateChannelIdException; nothing is changed
    /// then.
    void fromOldCharStream(const char **cursor);

private:
    int addRange(ChannelRange range);
    void checkDuplicates() const;
    void rebuildIndex();

    RangeMap m_ranges;
    std::vector<IndexedRange> m_indexed; // follows m_ranges
    unsigned int m_channelCount = 0;     // follows m_ranges
    bool m_ascending = true;             // each of m_indexed lies below the next one
};

} // namespace values

namespace Kelm {

/// A length, then a QDataStream image with names. See docs/samples.md.
template <>
SPECTREE_EXPORT std::string toStandardString(const values::ChannelRangeDefinition &definition);
/// \throws KRException for a truncated, malformed or unknown image and for a frequency that is not
/// finite, DuplicateChannelIdException.
template <>
SPECTREE_EXPORT values::ChannelRangeDefinition fromCharStream(const char **cursor);

} // namespace Kelm
