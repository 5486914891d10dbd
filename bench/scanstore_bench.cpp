// Storing a scan through a fast value map (time stamp, samples, end of scan) against a memcpy into
// a ring under a QReadWriteLock. Prints the ratio of the medians of one run, and counts what the
// feeding thread allocates once the ring has gone round. Run it on an idle machine:
//   bin/scanstore_bench
#include "medians.h"
#include "platform/startup/cfgcenter.h"
#include "scanbuffer/scanbufferdatasource.h"
#include "scanbuffer/scanbufferrepository.h"
#include "scanbuffer/windowrelated.h"
#include "valueclasses/fastvaluemap.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>

namespace {
thread_local std::uint64_t t_allocations = 0;
}

void *operator new(std::size_t size)
{
    ++t_allocations;
    if (void *memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }

namespace {

constexpr int kLines = 5;
constexpr std::int64_t kChannelCounts[] = {10'000, 100'000, 1'000'000};

template <typename Y, typename YHandler>
std::vector<Y> makeScan(std::size_t channels)
{
    std::vector<Y> scan(channels, YHandler::Minimum());
    for (std::size_t i = 0; i < channels; ++i)
        YHandler::SetDimensionValue(0, scan[i], double(i * 7 % 97));
    return scan;
}

/// What any store must do: one copy, under the lock that readers need.
template <typename Y>
struct Rival {
    explicit Rival(std::size_t channels) : ring(kLines, std::vector<Y>(channels)) {}
    void store(const std::vector<Y> &scan)
    {
        lock.lockForWrite();
        std::vector<Y> &line = ring[next++ % kLines];
        if constexpr (std::is_trivially_copyable_v<Y>)
            std::memcpy(line.data(), scan.data(), scan.size() * sizeof(Y));
        else
            std::copy(scan.begin(), scan.end(), line.begin());
        lock.unlock();
    }
    QReadWriteLock lock;
    std::vector<std::vector<Y>> ring;
    std::size_t next = 0;
};

/// A fast value map with a data source, as a receiver has it.
template <typename Y, typename YHandler>
struct Store {
    explicit Store(std::size_t channels)
    {
        values::ChannelRangeDefinition grid;
        grid.AddRangeDefinition(1, unsigned(channels), 1e8, 1e3, QString());
        buffer = map.CreateRealTimeBuffer();
        buffer->setSizeManagerActive(false);
        map.SetChannelRangeDefinition(grid, 0);
    }
    void store(const std::vector<Y> &scan)
    {
        map.SetTimeStamp(++time);
        map.SetChannelValues(1, unsigned(scan.size()), scan.data());
        map.EndOfScan();
    }
    values::FastValueMap<Y, YHandler> map;
    std::shared_ptr<sbs::ScanBuffer<Y, YHandler>> buffer;
    KRTimeStamp time = 0;
};

/// The window of a client, on its own thread: it folds each pass to 1000 pixels. No adapter sends
/// what it folds, so that only storing is measured.
template <typename Y, typename YHandler>
class Window {
public:
    explicit Window(Store<Y, YHandler> &store)
    {
        auto *const source = dynamic_cast<sbs::ScanBufferDataSource<Y, YHandler> *>(
            sbs::ScanBufferRepository::instance().getSourceByEndpoint(
                QByteArray::fromStdString(store.map.GetRealTimeBufferName())));
        sbs::WindowRelatedQObject *const window =
            source->CreateOrGetWindowRelated(QStringLiteral("{bench}"));
        const double channels = double(store.buffer->channelsPerChannelLine());
        Kelm::post(window, [window, channels] {
            window->SetXRange({1e8 - 500.0, 1e8 + (channels - 0.5) * 1e3, 1000});
            window->SetWindowVisible(true);
        });
        std::vector<Y> scan(std::size_t(channels), YHandler::Minimum());
        for (int i = 0; i < 20; ++i) { // until it reads
            store.store(scan);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
};

template <typename Target, typename Y>
void run(benchmark::State &state, Target &target, const std::vector<Y> &scan)
{
    for (int i = 0; i < 3 * kLines; ++i) // the ring has gone round, histories have their capacity
        target.store(scan);
    const std::uint64_t before = t_allocations;
    std::uint64_t scans = 0;
    for (auto _ : state) {
        target.store(scan);
        ++scans;
    }
    state.counters["allocs/scan"] = double(t_allocations - before) / double(scans);
}

template <typename Y, typename YHandler>
void rival(benchmark::State &state)
{
    Rival<Y> target(std::size_t(state.range(0)));
    run(state, target, makeScan<Y, YHandler>(std::size_t(state.range(0))));
}

template <typename Y, typename YHandler>
void store(benchmark::State &state)
{
    Store<Y, YHandler> target{std::size_t(state.range(0))};
    run(state, target, makeScan<Y, YHandler>(std::size_t(state.range(0))));
}

template <typename Y, typename YHandler>
void storeRead(benchmark::State &state)
{
    Store<Y, YHandler> target{std::size_t(state.range(0))};
    const Window<Y, YHandler> window(target);
    run(state, target, makeScan<Y, YHandler>(std::size_t(state.range(0))));
}

void printRatios(const Medians &medians)
{
    std::printf("\n%-44s %10s %8s %8s\n", "pair/channels", "rival ns", "store", "+window");
    for (const auto &[name, rival] : medians.all()) {
        if (name.rfind("rival/", 0) != 0)
            continue;
        const std::string rest = name.substr(6);
        std::printf("%-44s %10.0f %8.2f %8.2f\n", rest.c_str(), rival,
                    medians.of("store/" + rest) / rival, medians.of("window/" + rest) / rival);
    }
}

template <typename Y, typename YHandler>
void registerPair()
{
    if (values::RealTimeBufferFactory<Y, YHandler>::Create() == nullptr)
        return; // nobody serves this pair
    const std::string pair(values::pairName<YHandler>);
    for (const std::int64_t channels : kChannelCounts) {
        if constexpr (!std::is_same_v<YHandler, values::levelHandler>)
            if (channels != 100'000)
                continue;
        const auto add = [&](const std::string &name, void (*function)(benchmark::State &)) {
            benchmark::RegisterBenchmark((name + "/" + pair).c_str(), function)
                ->Arg(channels)
                ->UseRealTime();
        };
        add("rival", rival<Y, YHandler>);
        add("store", store<Y, YHandler>);
        add("window", storeRead<Y, YHandler>);
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    CfgCenter::GetAppCfg().Set(QStringLiteral("UseScanBufferServer"), true);
    CfgCenter::GetAppCfg().Set(QStringLiteral("ScanBufferServerEndpoint"),
                               QStringLiteral("tcp://127.0.0.1:*"));
    // Interleaved, so that a machine that slows down slows both sides.
    std::vector<char *> arguments(argv, argv + argc);
    char repetitions[] = "--benchmark_repetitions=9";
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char aggregates[] = "--benchmark_report_aggregates_only=true";
    char shortRuns[] = "--benchmark_min_time=0.1";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaved, aggregates, shortRuns});
    int count = int(arguments.size());
#define SPECTREE_REGISTER(Y, Handler) registerPair<Y, Handler>();
    SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_REGISTER)
#undef SPECTREE_REGISTER
    benchmark::Initialize(&count, arguments.data());
    Medians medians(Medians::kRealTime);
    benchmark::RunSpecifiedBenchmarks(&medians);
    printRatios(medians);
    return 0;
}
