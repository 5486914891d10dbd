#pragma once

// Steps of a cursor through pixels, channels and maxima.
#include "scanbuffer/window/windowrelated_impl.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace sbs {

template <typename Y, typename YHandler>
int WindowRelated<Y, YHandler>::LineIndex4Time(KRTimeStamp time) const
{
    int state = m_ring.LineIndexState4Time(time);
    if (state < 0 && m_measureMode)
        state = m_ring.LineIndexState4Time(m_lastTime);
    return state >= 0 ? state : m_ring.previousLine();
}

template <typename Y, typename YHandler>
int WindowRelated<Y, YHandler>::cursorLine() const
{
    return m_timeLine == 0 ? m_ring.currentLine() : LineIndex4Time(m_timeLine);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::MoveInRange(int &index) const
{
    index = std::clamp(index, 0, std::max(pixelCount() - 1, 0));
}

template <typename Y, typename YHandler>
double WindowRelated<Y, YHandler>::GetFrequency4Pixel(int pixel) const
{
    if (!m_xAxis.valid() || pixel < 0 || pixel >= pixelCount())
        return std::numeric_limits<double>::quiet_NaN();
    return m_xAxis.GetPixelCenter(pixel);
}

template <typename Y, typename YHandler>
unsigned int WindowRelated<Y, YHandler>::GetIndex4FrequencyFromChannelRange(double frequency,
                                                                            bool &ok) const
{
    ok = false;
    const auto none = static_cast<unsigned int>(-1);
    const std::vector<unsigned int> ids = m_definition.GetClosestChannelIdsForFrequency(frequency);
    if (ids.empty())
        return none;
    const auto pixels = m_mapper.pixels(m_definition.ChannelIdToIndex(ids.front()));
    if (!pixels)
        return none;
    ok = true;
    return pixels->first + (pixels->last - pixels->first + 1U) / 2U;
}

template <typename Y, typename YHandler>
int WindowRelated<Y, YHandler>::GetPixelIndex4Frequency(double frequency) const
{
    bool ok = false;
    const unsigned int index = GetIndex4FrequencyFromChannelRange(frequency, ok);
    if (ok)
        return static_cast<int>(index);
    const int pixel = m_xAxis.ToPixel(frequency, ok);
    return ok ? pixel : -1;
}

template <typename Y, typename YHandler>
bool WindowRelated<Y, YHandler>::NextPixel(int &index, bool forward) const
{
    const int end = forward ? pixelCount() - 1 : 0;
    if (forward ? index >= end : index <= end) {
        index = end;
        return false;
    }
    const int next = forward ? index + 1 : index - 1;
    if (std::isnan(GetFrequency4Pixel(next)))
        return false;
    index = next;
    return true;
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::NextPixelNewChannel(int &index, double &frequency,
                                                     bool forward) const
{
    if (!AnyValidLine())
        return;
    MoveInRange(index);
    const ScanDisplayLine<Y> &line = m_ring.line(cursorLine());
    const auto at = [&](const auto &values) { return values[static_cast<std::size_t>(index)]; };
    if (at(line.overwriteCounts) == 0) {
        NextPixel(index, forward);
        frequency = GetFrequency4Pixel(index);
        return;
    }
    const std::uint32_t id = at(line.channelIds);
    while (at(line.channelIds) == id && NextPixel(index, forward)) {
    }
    const auto *const range = m_definition.FindIndexedRange(at(line.channelIds));
    const double old = frequency;
    frequency = range != nullptr ? m_definition.ChannelIdToFrequency(at(line.channelIds)) : old;
    if (frequency != old)
        return;
    frequency = GetFrequency4Pixel(index);
    m_definition.GetClosestChannelCenterFrequency(frequency);
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::NearByPixelForChannelCenter(int &index, double &frequency) const
{
    constexpr int kNear = 5;
    if (!AnyValidLine())
        return;
    MoveInRange(index);
    const ScanDisplayLine<Y> &line = m_ring.line(cursorLine());
    const auto pixel = static_cast<std::size_t>(index);
    const auto *const range = m_definition.FindIndexedRange(line.channelIds[pixel]);
    if (line.overwriteCounts[pixel] == 0 || range == nullptr)
        return;
    const double center = m_definition.ChannelIdToFrequency(line.channelIds[pixel]);
    bool inside = false;
    const int centerPixel = m_xAxis.ToPixel(center, inside);
    if (!inside || std::abs(centerPixel - index) >= kNear)
        return;
    index = centerPixel;
    frequency = center;
}

template <typename Y, typename YHandler>
struct WindowRelated<Y, YHandler>::Point {
    double value;
    double frequency;
    int index;
};

template <typename Y, typename YHandler>
bool WindowRelated<Y, YHandler>::isAboveThresholdLine(const Point &point) const
{
    const auto pixel = static_cast<std::size_t>(point.index);
    const std::vector<double> &line = m_levels.GetThresholdLine();
    return pixel < line.size() && point.value > line[pixel];
}

template <typename Y, typename YHandler>
void WindowRelated<Y, YHandler>::NextLocalMax(int &index, double &frequency, bool forward) const
{
    if (!AnyValidLine())
        return;
    MoveInRange(index);
    const std::vector<Y> &line = WaterfallYLine(cursorLine());
    const auto pointHere = [&] {
        return Point{YHandler::GetDimension(0, line[static_cast<std::size_t>(index)]), frequency,
                     index};
    };
    const int startIndex = index;
    // A whole number of 32 bits is what a search without result gives back.
    const double limit = std::numeric_limits<std::int32_t>::max();
    const double startFrequency = std::trunc(std::clamp(frequency, -limit - 1.0, limit));
    std::vector<Point> points{pointHere()};
    const auto take = [&](const Point &point) {
        index = point.index;
        frequency = point.frequency;
    };
    for (;;) {
        const int before = index;
        NextPixelNewChannel(index, frequency, forward);
        if (index == before)
            break;
        points.push_back(pointHere());
        if (points.size() < 3)
            continue;
        const Point &last = points.back(), &middle = points[points.size() - 2],
                    &first = points[points.size() - 3];
        if (middle.value > last.value && middle.value >= first.value &&
            isAboveThresholdLine(middle))
            return take(middle);
    }
    index = startIndex;
    frequency = startFrequency;
    if (points.size() >= 2 && points.back().value >= points[points.size() - 2].value &&
        isAboveThresholdLine(points.back()))
        take(points.back());
}

/// While measuring, line 0 is never read: an index has to be positive there.
template <typename Y, typename YHandler>
Y WindowRelated<Y, YHandler>::GetLatestValue4Index(int pixel) const
{
    if (m_needsInitialization || m_ring.empty() || pixel < 0 || pixel >= pixelCount() ||
        !AnyValidLine())
        return YHandler::Minimum();
    const auto at = static_cast<std::size_t>(pixel);
    if (m_measureMode) {
        int index = m_ring.LineIndexState4Time(m_timeLine);
        if (index <= 0)
            index = m_ring.LineIndexState4Time(m_lastTime);
        return index > 0 ? WaterfallYLine(index)[at] : Y(YHandler::Minimum());
    }
    const Y &current = WaterfallYLine(m_ring.currentLine())[at];
    return current != YHandler::Minimum() ? current : WaterfallYLine(m_ring.previousLine())[at];
}

} // namespace sbs
