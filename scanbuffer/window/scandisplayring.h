#pragma once

#include "scanbuffer/window/scandisplayline.h"
#include "valueclasses/samples/samplepairs.h"

namespace sbs {

/// The ring of the newest folded scans of a window, found by their time stamps. Ids of scans only
/// rise, so they tell scans apart whose times are equal, or that have none (0).
///
/// Threads: none of its own; the window's thread owns it. Once it has a width it takes no memory.
template <typename Y, typename YHandler>
class ScanDisplayRing {
public:
    static constexpr int kLineCount = 50;
    static constexpr int kNotFound = -2;
    static constexpr int kUnfinished = -1;

    /// Makes all lines empty and \a pixels wide. The current line stays where it is when they had
    /// that width already.
    void init(std::size_t pixels);
    /// Every sample of every line to `Minimum`.
    void clearValues();
    bool empty() const { return m_lines.empty(); }
    /// Number of lines: 0 or kLineCount.
    int size() const { return static_cast<int>(m_lines.size()); }

    /// \pre 0 <= index < size()
    ScanDisplayLine<Y> &line(int index) { return m_lines[static_cast<std::size_t>(index)]; }
    const ScanDisplayLine<Y> &line(int index) const
    {
        return m_lines[static_cast<std::size_t>(index)];
    }
    /// Index of the newest line.
    int currentLine() const { return m_current; }
    /// The line before the newest one, wrapping.
    int previousLine() const { return (m_current + kLineCount - 1) % kLineCount; }

    /// The index of the finished line of \a time, kUnfinished or kNotFound. Time 0 is none's.
    int LineIndexState4Time(KRTimeStamp time) const;
    /// The line of the scan \a channelLineId that began at \a time, finished or not. Without one
    /// the next line of the ring becomes the current one, begins with what the line before shows,
    /// and takes time and id. \pre !empty() and channelLineId != 0
    int GetOrCreateLineIndex4Time(KRTimeStamp time, std::uint64_t channelLineId);

private:
    template <typename IsWanted>
    int find(IsWanted isWanted) const;

    std::vector<ScanDisplayLine<Y>> m_lines;
    int m_current = 0;
};

template <typename Y, typename YHandler>
void ScanDisplayRing<Y, YHandler>::init(std::size_t pixels)
{
    if (!m_lines.empty() && m_lines.front().size() == pixels) {
        for (ScanDisplayLine<Y> &line : m_lines)
            line.reset(YHandler::Minimum());
        return;
    }
    m_lines.assign(kLineCount, ScanDisplayLine<Y>(pixels, YHandler::Minimum()));
    m_current = 0;
}

template <typename Y, typename YHandler>
void ScanDisplayRing<Y, YHandler>::clearValues()
{
    for (ScanDisplayLine<Y> &line : m_lines)
        std::fill(line.yValues.begin(), line.yValues.end(), YHandler::Minimum());
}

template <typename Y, typename YHandler>
template <typename IsWanted>
int ScanDisplayRing<Y, YHandler>::find(IsWanted isWanted) const
{
    const auto found = std::find_if(m_lines.begin(), m_lines.end(), isWanted);
    return found == m_lines.end() ? kNotFound : static_cast<int>(found - m_lines.begin());
}

template <typename Y, typename YHandler>
int ScanDisplayRing<Y, YHandler>::LineIndexState4Time(KRTimeStamp time) const
{
    if (time == 0)
        return kNotFound;
    const int index = find([time](const auto &line) { return line.timeStamp == time; });
    return index < 0 || line(index).finished ? index : kUnfinished;
}

template <typename Y, typename YHandler>
int ScanDisplayRing<Y, YHandler>::GetOrCreateLineIndex4Time(KRTimeStamp time,
                                                            std::uint64_t channelLineId)
{
    const int index = find([=](const auto &line) {
        return line.channelLineId == channelLineId && line.timeStamp == time;
    });
    if (index >= 0)
        return index;
    const ScanDisplayLine<Y> &previous = line(m_current);
    m_current = (m_current + 1) % kLineCount;
    ScanDisplayLine<Y> &current = line(m_current);
    current.continueFrom(previous);
    current.timeStamp = time;
    current.channelLineId = channelLineId;
    return m_current;
}

} // namespace sbs
