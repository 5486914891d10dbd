#pragma once

#include "scanbuffer/lines/channellinebuffer.h"

#include <algorithm>

namespace sbs {

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::recreate(std::uint64_t lines, unsigned int channels)
{
    lines = std::max(lines, kMinimumLines);
    if (hasLines() && !currentLine().isEmpty())
        ++m_currentId;
    else if (m_currentId == 0)
        m_currentId = 1;
    startOver();
    boost::circular_buffer<Line>().swap(m_lines);
    boost::circular_buffer<Line> fresh(lines);
    while (!fresh.full())
        fresh.push_back(Line(channels));
    m_lines.swap(fresh);
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::setNumberOfLines(std::uint64_t lines)
{
    if (!hasLines())
        return;
    lines = std::max(lines, kMinimumLines);
    const std::uint64_t inUse = m_currentId - m_firstId + 1;
    if (lines > m_lines.capacity())
        grow(lines);
    else
        m_lines.rset_capacity(lines);
    if (lines < inUse)
        m_firstId = m_currentId - lines + 1;
}

/// The new lines are made before the ring is touched, so that it stays whole without memory.
template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::grow(std::uint64_t lines)
{
    std::vector<Line> fresh;
    fresh.reserve(lines - m_lines.size());
    while (fresh.size() < lines - m_lines.size())
        fresh.emplace_back(channelCount());
    m_lines.set_capacity(lines);
    for (Line &line : fresh)
        m_lines.push_front(std::move(line));
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::clear()
{
    if (hasLines() && !currentLine().isEmpty())
        ++m_currentId;
    startOver();
    for (Line &line : m_lines)
        line.resetDeferred();
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::startOver()
{
    m_firstId = m_currentId;
    m_lastFinishedId = 0;
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::finishCurrentLine()
{
    if (!currentLine().isFinished())
        currentLine().finish();
    m_lines.rotate(m_lines.begin() + 1);
    if (!currentLine().isEmpty()) {
        ++m_firstId;
        currentLine().resetDeferred();
    }
    m_lastFinishedId = m_currentId++;
}

template <typename Y, typename YHandler>
auto ChannelLineBuffer<Y, YHandler>::line(std::uint64_t id) const -> const Line &
{
    return m_lines[m_lines.size() - 1 - (m_currentId - id)];
}

template <typename Y, typename YHandler>
std::pair<std::uint64_t, std::uint64_t> ChannelLineBuffer<Y, YHandler>::getIdRange() const
{
    if (!hasLines())
        return {0, 0};
    const bool readable = currentLine().hasValidTime();
    if (m_firstId == m_currentId && !readable)
        return {0, 0};
    return {m_firstId, m_currentId + (readable ? 1 : 0)};
}

} // namespace sbs
