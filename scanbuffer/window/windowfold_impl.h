#pragma once

#include "scanbuffer/fold/foldkernels.h"
#include "scanbuffer/window/windowfold.h"

#include <algorithm>

namespace sbs {

namespace Detail {

/// Writes samples to pixels, one by one.
template <typename Y, typename YHandler>
class PixelWriter {
public:
    PixelWriter(ScanDisplayLine<Y> &line, FoldRules &rules)
        : m_line(line), m_rules(rules), m_minimum(YHandler::Minimum())
    {
    }

    void put(const Y &sample, std::uint32_t channelId, std::size_t pixel)
    {
        const bool firstWrite = m_line.overwriteCounts[pixel] == 0 && sample != m_minimum;
        const bool write = firstWrite || m_rules.lastSampleWins || m_line.yValues[pixel] < sample;
        if (write)
            store(sample, channelId, pixel);
        if (!m_rules.maxHold.empty() || !m_rules.minHold.empty())
            hold(YHandler::GetDimension(m_rules.holdDimension, sample), pixel, write);
    }
    bool changed() const { return m_changed; }

private:
    void store(const Y &sample, std::uint32_t channelId, std::size_t pixel)
    {
        m_line.yValues[pixel] = sample;
        m_line.channelIds[pixel] = channelId;
        if (!m_rules.keepOverwriteCounts)
            ++m_line.overwriteCounts[pixel];
        m_changed = true;
    }
    void hold(double value, std::size_t pixel, bool written)
    {
        if (written && pixel < m_rules.maxHold.size() && value > m_rules.maxHold[pixel])
            m_rules.maxHold[pixel] = value;
        if (pixel < m_rules.minHold.size() && value < m_rules.minHold[pixel])
            m_rules.minHold[pixel] = value;
    }

    ScanDisplayLine<Y> &m_line;
    FoldRules &m_rules;
    const Y m_minimum;
    bool m_changed = false;
};

/// The rule for the greatest sample alone: the winner of each pixel is stored once, at the end.
template <typename Y>
bool foldMaximum(std::span<const Y> samples, std::span<const channelToPixel::PixelRun> runs,
                 ScanDisplayLine<Y> &line, std::uint32_t first, std::uint32_t last,
                 const Y &minimum)
{
    bool changed = false;
    for (const channelToPixel::PixelRun &run : runs) {
        const std::uint32_t begin = std::max(first, run.firstChannel);
        const std::uint32_t end = std::min(last + 1, run.endChannel());
        for (std::size_t pixel = run.pixels.first; pixel <= run.pixels.last; ++pixel) {
            const Y *winner = &line.yValues[pixel];
            std::int32_t count = line.overwriteCounts[pixel];
            for (const Y *sample = &samples[begin]; sample != samples.data() + end; ++sample) {
                if (!(*winner < *sample) && (count != 0 || *sample == minimum))
                    continue;
                winner = sample;
                ++count;
            }
            if (winner == &line.yValues[pixel])
                continue;
            line.yValues[pixel] = *winner;
            line.channelIds[pixel] =
                run.firstChannelId + std::uint32_t(winner - samples.data()) - run.firstChannel;
            line.overwriteCounts[pixel] = count;
            changed = true;
        }
    }
    return changed;
}

/// The number that a sample is made of, if it is one; void otherwise.
template <typename Y>
struct NumberOf {
    using type = std::conditional_t<foldkernels::Number<Y>, Y, void>;
};
template <>
struct NumberOf<Kelm::Long> {
    using type = std::int32_t;
};

} // namespace Detail

template <typename Y, typename YHandler>
bool foldPlain(std::span<const Y> samples,
               const channelToPixel::ChannelIndexToPixelRangeMapper &mapper,
               ScanDisplayLine<Y> &line, std::uint32_t first, std::uint32_t last, FoldRules &rules)
{
    if (samples.empty() || mapper.pixelCount() != line.size())
        return false;
    last = std::min(last, static_cast<std::uint32_t>(samples.size() - 1));
    Detail::PixelWriter<Y, YHandler> writer(line, rules);
    for (const channelToPixel::PixelRun &run : mapper.runs(first, last)) {
        const std::uint32_t begin = std::max(first, run.firstChannel);
        const std::uint32_t end = std::min(last, run.endChannel() - 1);
        for (std::uint32_t channel = begin; channel <= end; ++channel)
            for (std::size_t pixel = run.pixels.first; pixel <= run.pixels.last; ++pixel)
                writer.put(samples[channel], run.firstChannelId + (channel - run.firstChannel),
                           pixel);
    }
    return writer.changed();
}

template <typename Y, typename YHandler>
bool fold(std::span<const Y> samples, const channelToPixel::ChannelIndexToPixelRangeMapper &mapper,
          ScanDisplayLine<Y> &line, std::uint32_t first, std::uint32_t last, FoldRules &rules)
{
    if (!rules.isPlainMaximum())
        return foldPlain<Y, YHandler>(samples, mapper, line, first, last, rules);
    if (first >= samples.size() || mapper.pixelCount() != line.size())
        return false;
    last = std::min(last, static_cast<std::uint32_t>(samples.size() - 1));
    const auto runs = mapper.runs(first, last);
    using Number = typename Detail::NumberOf<Y>::type;
    if constexpr (std::is_void_v<Number>)
        return Detail::foldMaximum<Y>(samples, runs, line, first, last, YHandler::Minimum());
    else
        return foldkernels::bestKernel<Number>()(
            {reinterpret_cast<const Number *>(samples.data()), samples.size(),
             Number(YHandler::Minimum()), reinterpret_cast<Number *>(line.yValues.data()),
             line.channelIds.data(), line.overwriteCounts.data(), runs.data(),
             runs.data() + runs.size(), first, last});
}

} // namespace sbs
