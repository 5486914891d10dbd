#pragma once

#include "scanbuffer/lines/channellinebuffer.h"

#include <algorithm>

namespace sbs {

template <typename Y, typename YHandler>
auto ChannelLineBuffer<Y, YHandler>::makeRing(std::uint64_t lines, std::uint64_t filled,
                                              unsigned int channels) -> Ring
{
    Ring ring(lines);
    while (ring.size() < filled)
        ring.push_back(Line(channels));
    return ring;
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::recreate(std::uint64_t lines, unsigned int channels)
{
    lines = std::max(lines, kMinimumLines);
    Ring ring = makeRing(lines, lines, channels);
    replaceRing(ring);
}

template <typename Y, typename YHandler>
std::uint64_t ChannelLineBuffer<Y, YHandler>::idAfterReplacing() const
{
    if (hasLines() && !currentLine().isEmpty())
        return m_currentId + 1;
    return std::max<std::uint64_t>(m_currentId, 1);
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::replaceRing(Ring &ring) noexcept
{
    m_currentId = idAfterReplacing();
    startOver();
    m_lines.swap(ring);
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::setNumberOfLines(std::uint64_t lines)
{
    Ring none;
    setNumberOfLines(lines, none);
}

template <typename Y, typename YHandler>
void ChannelLineBuffer<Y, YHandler>::setNumberOfLines(std::uint64_t lines, Ring &prepared)
{
    if (!hasLines())
        return;
    lines = std::max(lines, kMinimumLines);
    if (lines == scanCount())
        return;
    const std::uint64_t inUse = m_currentId - m_firstId + 1;
    const std::uint64_t kept = std::min<std::uint64_t>(lines, m_lines.size());
    const bool fits = prepared.capacity() == lines && prepared.size() == lines - kept &&
                      (prepared.empty() || prepared.front().size() == channelCount());
    if (!fits)
        prepared = makeRing(lines, lines - kept, channelCount());
    for (auto line = m_lines.end() - std::ptrdiff_t(kept); line != m_lines.end(); ++line)
        prepared.push_back(std::move(*line));
    m_lines.swap(prepared);
    if (lines < inUse)
        m_firstId = m_currentId - lines + 1;
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
