// Storing a scan (time stamp, samples, end of scan) against a memcpy into a ring under a
// QReadWriteLock. Prints the ratio of the medians of one run, and counts what the feeding thread
// allocates once the ring has gone round. Run it on an idle machine:
//   bin/scanstore_bench
#include "scanbuffer/scanbuffer.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
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

template <typename Y, typename YHandler>
struct Store {
    explicit Store(std::size_t channels)
    {
        values::ChannelRangeDefinition grid;
        grid.AddRangeDefinition(1, unsigned(channels), 1e8, 1e3, QString());
        buffer->setSizeManagerActive(false);
        buffer->setChannelRangeDefinition(grid);
    }
    void store(const std::vector<Y> &scan)
    {
        buffer->addTimeStamp(++time);
        buffer->addSpectralData({0, std::uint32_t(scan.size()), scan.data()});
        buffer->endOfScan();
    }
    std::shared_ptr<sbs::ScanBuffer<Y, YHandler>> buffer = sbs::ScanBuffer<Y, YHandler>::create();
    KRTimeStamp time = 0;
};

/// What a window costs the feeder: five connections that run on its thread, and a reader that comes
/// every 20 ms and looks at a thousand samples of the newest line.
template <typename Y, typename YHandler>
class Window : public sbs::ScanBufferVisitor<Y, YHandler> {
public:
    using Buffer = sbs::ScanBuffer<Y, YHandler>;
    explicit Window(Buffer &buffer)
    {
        const auto note = [this] { m_pending.store(true, std::memory_order_relaxed); };
        QObject::connect(&buffer, &Buffer::signalTimeStampAdded, &buffer, note);
        QObject::connect(&buffer, &Buffer::signalSpectralDataAdded, &buffer, note);
        QObject::connect(&buffer, &Buffer::signalChannelRangeDefinitionChanged, &buffer, note);
        QObject::connect(&buffer, &Buffer::signalKFactorChanged, &buffer, note);
        QObject::connect(&buffer, &Buffer::signalScansPerSecond, &buffer, note);
        m_thread = std::jthread([this, &buffer](std::stop_token stop) {
            while (!stop.stop_requested()) {
                if (m_pending.exchange(false))
                    buffer.accept(*this);
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        });
    }
    void visit(const sbs::ScanBufferAccess<Y, YHandler> &access) override
    {
        const auto [first, end] = access.getChannelLineIdRange();
        if (first == end)
            return;
        const std::vector<Y> &samples = access.getChannelLine(end - 1).spectralData();
        for (std::size_t i = 0; i < samples.size(); i += samples.size() / 1000)
            benchmark::DoNotOptimize(samples[i] < samples[0]);
    }

private:
    std::atomic<bool> m_pending{false};
    std::jthread m_thread;
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
    Window<Y, YHandler> window(*target.buffer);
    run(state, target, makeScan<Y, YHandler>(std::size_t(state.range(0))));
}

/// Prints the usual lines, and remembers the medians for the table of ratios.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &one : runs)
            if (one.run_type == Run::RT_Aggregate && one.aggregate_name == "median")
                m_medians[one.run_name.function_name + "/" + one.run_name.args] =
                    one.GetAdjustedRealTime();
    }
    void printRatios() const
    {
        std::printf("\n%-44s %10s %8s %8s\n", "pair/channels", "rival ns", "store", "+window");
        for (const auto &[name, rivalTime] : m_medians) {
            if (name.rfind("rival/", 0) != 0)
                continue;
            const std::string rest = name.substr(6);
            std::printf("%-44s %10.0f %8s %8s\n", rest.c_str(), rivalTime,
                        ratio("store/" + rest, rivalTime).c_str(),
                        ratio("window/" + rest, rivalTime).c_str());
        }
    }

private:
    std::string ratio(const std::string &name, double rivalTime) const
    {
        const auto found = m_medians.find(name);
        if (found == m_medians.end())
            return "-";
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", found->second / rivalTime);
        return text;
    }
    std::map<std::string, double> m_medians;
};

template <typename Y, typename YHandler>
void registerPair()
{
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
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    return 0;
}
