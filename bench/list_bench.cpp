// A list of detections to its text and back, and to its bytes and back, at two sizes: ten times the
// records shall take ten times the time. The rival is QDataStream with the same fields.
#include "valueclasses/records/sequencekinds.h"

#include <QDataStream>
#include <benchmark/benchmark.h>

namespace {

using namespace values;
using List = ValueList<DetectionConventional>;

std::list<DetectionConventional> makeDetections(std::int64_t count)
{
    std::list<DetectionConventional> detections;
    for (int i = 0; i < count; ++i) {
        DetectionConventional &detection = detections.emplace_back();
        detection.SetID(i);
        detection.SetLevel(short(i % 90));
        detection.SetFrequency(30e6 + 12.5e3 * i);
        detection.SetBandwidth(12.5e3);
        detection.SetActive(i % 3 == 0);
        detection.SetStartTime(1.6e9 + i);
        detection.SetStatusChangedTime(1.6e9 + i + 0.25);
    }
    return detections;
}

void finish(benchmark::State &state, const List &copy)
{
    if (copy.Size() != std::size_t(state.range(0)))
        state.SkipWithError("records were lost");
    state.counters["time/record"] =
        benchmark::Counter(double(state.range(0)), benchmark::Counter::kIsIterationInvariantRate |
                                                       benchmark::Counter::kInvert);
}

void text(benchmark::State &state)
{
    List list, copy;
    list.SetList(makeDetections(state.range(0)), nullptr);
    for (auto _ : state)
        copy.SetStringValue(list.GetStringValue(), nullptr);
    finish(state, copy);
}

void binary(benchmark::State &state)
{
    List list, copy;
    list.SetList(makeDetections(state.range(0)), nullptr);
    for (auto _ : state)
        copy.SetCommandString(list.GetObjectStateStringForTransmission(unsigned(ModeBinaryTagged)),
                              nullptr, ModeBinaryTagged);
    finish(state, copy);
}

void dataStream(benchmark::State &state)
{
    const auto detections = makeDetections(state.range(0));
    List copy;
    for (auto _ : state) {
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        for (const DetectionConventional &each : detections)
            std::apply([&](const auto &...field) { (out << ... << field); },
                       DetectionConventional::Fields(each));
        QDataStream in(bytes);
        std::list<DetectionConventional> read;
        while (!in.atEnd())
            std::apply([&](auto &...field) { (in >> ... >> field); },
                       DetectionConventional::Fields(read.emplace_back()));
        copy.SetList(read, nullptr);
    }
    finish(state, copy);
}

void size(benchmark::State &state)
{
    List list;
    list.SetList(makeDetections(state.range(0)), nullptr);
    for (auto _ : state)
        benchmark::DoNotOptimize(list.Size());
}

BENCHMARK(text)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);
BENCHMARK(binary)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);
BENCHMARK(dataStream)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);
BENCHMARK(size)->Arg(5000)->Arg(50000);

} // namespace

BENCHMARK_MAIN();
