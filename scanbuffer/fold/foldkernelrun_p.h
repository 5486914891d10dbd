#pragma once

#include "scanbuffer/fold/foldkernels.h"

// Included by one file for each set of instructions, which is compiled with that set alone. All of
// it stands in an unnamed namespace, and it calls no inline function of anybody else: the linker
// keeps one copy of such a function, and might keep the one that older processors can't run.
namespace sbs::foldkernels {
namespace {

/// What a stretch of samples does to a pixel that was written before.
struct Records {
    std::uint32_t count = 0; ///< samples above everything before them
    std::uint32_t last = 0;  ///< index of the last of them
};

/// Folds one stretch into one pixel. `Scanner::scan(samples, count, readable, value)` finds the
/// records above \a value, and may read \a readable samples.
template <typename Scanner, typename T>
inline bool foldStretch(const Job<T> &job, std::uint32_t begin, std::uint32_t end,
                        std::uint32_t firstId, std::size_t pixel)
{
    T value = job.values[pixel];
    std::int32_t count = job.counts[pixel];
    std::uint32_t at = begin, winner = end;
    if (count == 0) {
        // The first valid sample of a scan is written whatever the scan before left here.
        while (at < end && !(job.samples[at] != job.minimum || value < job.samples[at]))
            ++at;
        if (at == end)
            return false;
        winner = at++;
        value = job.samples[winner];
        count = 1;
    }
    const Records records = Scanner::scan(job.samples + at, end - at, job.sampleCount - at, value);
    if (records.count != 0)
        winner = at + records.last;
    if (winner == end)
        return false;
    job.values[pixel] = job.samples[winner];
    job.ids[pixel] = firstId + (winner - begin);
    job.counts[pixel] = count + static_cast<std::int32_t>(records.count);
    return true;
}

template <typename Scanner, typename T>
bool foldRuns(const Job<T> &job)
{
    bool changed = false;
    for (const channelToPixel::PixelRun *run = job.runs; run != job.endOfRuns; ++run) {
        const std::uint32_t runEnd = run->firstChannel + run->channelCount;
        const std::uint32_t begin = run->firstChannel < job.first ? job.first : run->firstChannel;
        const std::uint32_t end = runEnd - 1 > job.last ? job.last + 1 : runEnd;
        const std::uint32_t id = run->firstChannelId + (begin - run->firstChannel);
        for (std::size_t pixel = run->pixels.first; pixel <= run->pixels.last; ++pixel)
            changed |= foldStretch<Scanner>(job, begin, end, id, pixel);
    }
    return changed;
}

} // namespace
} // namespace sbs::foldkernels
