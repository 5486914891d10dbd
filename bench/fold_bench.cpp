// How fast a window folds a scan into its pixels, against a plain loop that only takes the maximum.
//
// Each round is on a new line, as for a new scan. "ratio" is the plain loop's time divided by the
// fold's, both medians of rounds that take turns, so that a busy machine slows both.

#include "scanbuffer/window/windowfold.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>

namespace {

using Clock = std::chrono::steady_clock;
constexpr short kPixels = 1000;

enum class Shape { noise, carriers, rising };

/// The rival: the first channel of each pixel, worked out before, and a maximum. Compiled with this
/// file's -O2.
template <typename Y>
__attribute__((noinline)) void plainMaximum(const Y *samples, const std::uint32_t *edges, Y *pixels,
                                            std::size_t count)
{
    for (std::size_t pixel = 0; pixel < count; ++pixel) {
        Y highest = samples[edges[pixel]];
        for (std::uint32_t i = edges[pixel] + 1; i < edges[pixel + 1]; ++i)
            if (highest < samples[i])
                highest = samples[i];
        pixels[pixel] = highest;
    }
}

template <typename Y, typename Handler>
Y sampleOf(double level)
{
    Y sample = Handler::Minimum();
    Handler::SetDimensionValue(0, sample, level);
    return sample;
}

template <typename Y, typename Handler>
std::vector<Y> scanOf(std::size_t channels, Shape shape)
{
    std::mt19937 random(3);
    std::normal_distribution<double> noise(20.0, 6.0);
    std::vector<Y> samples(channels, Handler::Minimum());
    for (std::size_t i = 0; i < channels; ++i)
        samples[i] = sampleOf<Y, Handler>(
            shape == Shape::rising ? 120.0 * double(i) / double(channels) : noise(random));
    for (std::size_t carrier = 0; shape == Shape::carriers && carrier < 200; ++carrier)
        samples[random() % channels] = sampleOf<Y, Handler>(60.0 + double(carrier % 50));
    return samples;
}

template <typename Y, typename Handler>
struct Setup {
    explicit Setup(std::size_t channels, Shape shape)
        : samples(scanOf<Y, Handler>(channels, shape)), line(kPixels, Handler::Minimum()),
          fresh(line), rivalPixels(kPixels, Handler::Minimum())
    {
        values::ChannelRangeDefinition definition;
        definition.AddRangeDefinition(1, unsigned(channels), 100e6 + 500.0, 1e3, {});
        axisDefinition axis;
        axis.init(100e6, 100e6 + 1e3 * double(channels), kPixels);
        mapper = channelToPixel::ChannelIndexToPixelRangeMapper(definition, axis);
        for (const auto &run : mapper.runs())
            edges.push_back(run.firstChannel);
        edges.push_back(std::uint32_t(channels));
    }
    void foldOnce()
    {
        sbs::fold<Y, Handler>(samples, mapper, line, 0, std::uint32_t(samples.size() - 1), rules);
    }

    std::vector<Y> samples;
    channelToPixel::ChannelIndexToPixelRangeMapper mapper;
    std::vector<std::uint32_t> edges;
    sbs::ScanDisplayLine<Y> line, fresh;
    std::vector<Y> rivalPixels;
    sbs::FoldRules rules;
};

template <typename Work>
double secondsOf(Work &&work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double medianOf(std::vector<double> &times)
{
    const auto middle = times.begin() + std::ptrdiff_t(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

template <typename Y, typename Handler>
void foldAgainstPlainLoop(benchmark::State &state)
{
    Setup<Y, Handler> setup(std::size_t(state.range(0)), Shape(state.range(1)));
    std::vector<double> foldTimes, rivalTimes;
    for (auto _ : state) {
        setup.line.continueFrom(setup.fresh);
        const double folding = secondsOf([&] { setup.foldOnce(); });
        rivalTimes.push_back(secondsOf([&] {
            plainMaximum(setup.samples.data(), setup.edges.data(), setup.rivalPixels.data(),
                         setup.edges.size() - 1);
        }));
        foldTimes.push_back(folding);
        state.SetIterationTime(folding);
        benchmark::DoNotOptimize(setup.rivalPixels.data());
    }
    const double foldTime = medianOf(foldTimes), rivalTime = medianOf(rivalTimes);
    state.counters["fold_us"] = foldTime * 1e6;
    state.counters["plain_us"] = rivalTime * 1e6;
    state.counters["ratio"] = rivalTime / foldTime;
    const char *const names[] = {"noise", "carriers", "rising"};
    state.SetLabel(names[state.range(1)]);
}

void allShapes(benchmark::internal::Benchmark *benchmark)
{
    for (const long channels : {10'000L, 100'000L, 1'000'000L})
        for (const long shape : {0L, 1L, 2L})
            benchmark->Args({channels, shape});
    benchmark->UseManualTime()->Unit(benchmark::kMicrosecond);
}

#define SPECTREE_FOLD_BENCH(Y, Handler)                                                            \
    const auto *const registered##Handler =                                                        \
        benchmark::RegisterBenchmark("fold/" #Handler, foldAgainstPlainLoop<Y, values::Handler>)   \
            ->Apply(allShapes);
SPECTREE_FOLD_BENCH(short, levelHandler)
SPECTREE_FOLD_BENCH(char, charHandler)
SPECTREE_FOLD_BENCH(Kelm::Long, longHandler)
SPECTREE_FOLD_BENCH(float, floatHandler)
SPECTREE_FOLD_BENCH(double, doubleHandler)
SPECTREE_FOLD_BENCH(values::Bearing, BearingHandler)
SPECTREE_FOLD_BENCH(values::MinMax, MinMaxHandler)
SPECTREE_FOLD_BENCH(values::Pulse, PulseHandler)
SPECTREE_FOLD_BENCH(values::BearingExtended, BearingExtendedHandler)
SPECTREE_FOLD_BENCH(values::DFSpectrumSample, DFSpectrumSampleHandler)
#undef SPECTREE_FOLD_BENCH

} // namespace

BENCHMARK_MAIN();
