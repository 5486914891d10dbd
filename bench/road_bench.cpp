// The whole road beside a bare chain and beside the usual Qt way; compare items_per_second of one
// run.
#include "road.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace {

using MakeRoad = std::unique_ptr<road::Road> (*)(const road::Load &);

void scans(benchmark::State &state, MakeRoad make)
{
    const road::Load load{int(state.range(0)), int(state.range(1))};
    const auto samples = road::makeScans(load.channels);
    const auto road = make(load);
    std::uint64_t number = 0;
    for (auto _ : state) {
        if (!road->waitForRoom()) {
            state.SkipWithError("rows stayed away");
            return;
        }
        ++number;
        road->feed(samples[number % samples.size()], number);
    }
    if (!road->waitForAll())
        state.SkipWithError("the last rows stayed away");
    state.SetItemsProcessed(state.iterations());
}

void loads(benchmark::internal::Benchmark *bench)
{
    bench->Args({10000, 1})->Args({100000, 1})->Args({100000, 4})->UseRealTime()->MinTime(1.0);
}

BENCHMARK_CAPTURE(scans, bare, road::makeBareRoad)->Apply(loads);
BENCHMARK_CAPTURE(scans, spectree, road::makeSpectreeRoad)->Apply(loads);
BENCHMARK_CAPTURE(scans, qt, road::makeQtRoad)->Apply(loads);
BENCHMARK_CAPTURE(scans, qt_folded, road::makeFoldedQtRoad)->Apply(loads);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
