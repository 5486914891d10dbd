// A waterfall row from the window's line to wire bytes, against bare zstd of the same row.
#include "scanbuffer/waterfall/waterfallrows_impl.h"
#include "tests/scanbuffer/fakewindow.h"

#include <benchmark/benchmark.h>
#include <zstd.h>

#include <cstdlib>
#include <new>
#include <random>

namespace {

std::uint64_t allocations = 0;

enum class Rule { plain, threshold, relative };

/// A noise floor with carriers, between 0 and 100 in dimension 0.
template <typename Y, typename YHandler>
std::vector<Y> makeLine(int pixels)
{
    std::mt19937 random(1);
    std::normal_distribution<double> noise(20.0, 2.5);
    std::vector<Y> line(std::size_t(pixels), YHandler::Minimum());
    for (int pixel = 0; pixel < pixels; ++pixel) {
        const double carrier = pixel % 50 == 0 ? 40.0 : 0.0;
        YHandler::SetDimensionValue(0, line[std::size_t(pixel)], noise(random) + carrier);
    }
    return line;
}

template <typename Y, typename YHandler>
FakeWindow<Y> makeWindow(int pixels, Rule rule)
{
    FakeWindow<Y> window;
    window.colorSteps = 64;
    window.yRanges[0] = {0.0, 100.0};
    window.lines = {makeLine<Y, YHandler>(pixels)};
    window.ids = {1};
    window.thresholdActive = rule == Rule::threshold;
    for (int pixel = 0; pixel < pixels; ++pixel)
        window.thresholdLine.push_back(18.0 + pixel % 7 * 0.1);
    window.refLine.assign(std::size_t(pixels), 10.0);
    return window;
}

template <typename Y, typename YHandler>
void rowToWire(benchmark::State &state, Rule rule)
{
    const int pixels = int(state.range(0));
    const auto window = makeWindow<Y, YHandler>(pixels, rule);
    const std::vector<int> lines{0};
    std::vector<KRTimeStamp> times{1};
    sbs::WaterfallRows<Y, YHandler> rows;
    const auto once = [&] {
        ++times[0];
        const typename sbs::WaterfallRows<Y, YHandler>::Pass pass{
            lines, times, pixels, 1, rule == Rule::relative, false, 0};
        if (!rows.hasRunBack(pass))
            rows.compose(window, pass);
        const QByteArray wire = rows.message();
        benchmark::DoNotOptimize(wire.constData());
    };
    once();
    const std::uint64_t before = allocations;
    for (auto _ : state)
        once();
    state.counters["allocations"] =
        benchmark::Counter(double(allocations - before), benchmark::Counter::kAvgIterations);
    state.counters["bytes"] = rows.message().GetBinarySize();
}

/// The rival: the packing alone, of the very row, into a buffer that is kept.
template <typename Y, typename YHandler>
void bareZstd(benchmark::State &state, Rule rule)
{
    const int pixels = int(state.range(0));
    const auto window = makeWindow<Y, YHandler>(pixels, rule);
    const std::vector<int> lines{0};
    const std::vector<KRTimeStamp> times{1};
    sbs::WaterfallRows<Y, YHandler> rows;
    rows.compose(window, {lines, times, pixels, 1, rule == Rule::relative, false, 0});
    const std::string row = rows.message().GetString();
    std::vector<char> packed(ZSTD_compressBound(row.size()));
    ZSTD_CCtx *const context = ZSTD_createCCtx();
    std::size_t size = 0;
    for (auto _ : state) {
        size = ZSTD_compressCCtx(context, packed.data(), packed.size(), row.data(), row.size(), 1);
        benchmark::DoNotOptimize(packed.data());
    }
    ZSTD_freeCCtx(context);
    state.counters["bytes"] = double(size);
}

template <typename Y, typename YHandler>
void registerPair()
{
    const std::string name(values::pairName<YHandler>);
    const auto add = [](const std::string &title, auto run, Rule rule) {
        benchmark::RegisterBenchmark(title.c_str(), run, rule)->Arg(1000)->Arg(4000);
    };
    for (const auto &[suffix, rule] : {std::pair{"", Rule::plain},
                                       {"/threshold", Rule::threshold},
                                       {"/relative", Rule::relative}}) {
        add("zstd/" + name + suffix, bareZstd<Y, YHandler>, rule);
        add("row/" + name + suffix, rowToWire<Y, YHandler>, rule);
    }
}

} // namespace

// Counts what the rows take beside their message; malloc is where Qt takes its arrays from.
extern "C" void *__libc_malloc(std::size_t size);
extern "C" void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

int main(int argc, char **argv)
{
#define SPECTREE_REGISTER(Y, Handler) registerPair<Y, Handler>();
    SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_REGISTER)
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
