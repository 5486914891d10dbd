#pragma once

#include "scanbuffer/lines/channelline.h"

#include <algorithm>

namespace sbs {

template <typename Y, typename YHandler>
ChannelLine<Y, YHandler>::ChannelLine(unsigned int channels)
    : m_spectralData(channels, YHandler::Minimum())
{
}

template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::setFirstTimeStamp(KRTimeStamp time)
{
    m_firstTimeStamp = time;
    m_state = State::time;
}

template <typename Y, typename YHandler>
const std::vector<Y> &ChannelLine<Y, YHandler>::spectralData() const
{
    refill();
    return m_spectralData;
}

template <typename Y, typename YHandler>
std::uint32_t ChannelLine<Y, YHandler>::setSamples(std::uint32_t index, std::uint32_t count,
                                                   const Y *samples)
{
    if (index >= size())
        return 0;
    const std::uint32_t stored = std::min(count, size() - index);
    if (stored == 0)
        return 0;
    fillGapBefore(index, index + stored);
    // One memmove for every sample type but the one that owns memory.
    std::copy_n(samples, stored, m_spectralData.data() + index);
    m_history.emplace_back(index, stored);
    // Last: had the lines above thrown, the stretch would still be refilled.
    shrinkStale(index, index + stored);
    m_state = State::samples;
    return stored;
}

template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::finish()
{
    refill();
    m_state = State::finished;
}

template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::reset()
{
    resetDeferred();
    refill();
}

template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::resetDeferred()
{
    m_history.clear();
    m_firstTimeStamp = m_lastTimeStamp = 0;
    m_state = State::empty;
    m_staleBegin = 0;
    m_staleEnd = size();
}

template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::refill() const
{
    if (!needsRefill())
        return;
    fill(m_staleBegin, m_staleEnd);
    m_staleBegin = m_staleEnd;
}

template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::fill(std::uint32_t begin, std::uint32_t end) const
{
    std::fill(m_spectralData.begin() + begin, m_spectralData.begin() + end, YHandler::Minimum());
}

/// A write into the middle would leave two stale stretches: the one before it is filled now.
template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::fillGapBefore(std::uint32_t begin, std::uint32_t end)
{
    if (begin <= m_staleBegin || end >= m_staleEnd)
        return;
    fill(m_staleBegin, begin);
    m_staleBegin = begin;
}

/// \pre the stretch begin..end does not lie inside the stale one with a rest on both sides
template <typename Y, typename YHandler>
void ChannelLine<Y, YHandler>::shrinkStale(std::uint32_t begin, std::uint32_t end)
{
    if (begin >= m_staleEnd || end <= m_staleBegin)
        return;
    if (begin <= m_staleBegin)
        m_staleBegin = std::min(end, m_staleEnd);
    else
        m_staleEnd = begin;
}

} // namespace sbs
