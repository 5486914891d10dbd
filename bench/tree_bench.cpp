// The value tree: a path lookup against one QHash of whole paths, and building, tearing down and
// memory against a QObject a value. Prints the ratios of the medians of one run. Run it on an idle
// machine:
//   bin/tree_bench
#include "medians.h"
#include "valueclasses/value.h"
#include "valuetree/tree.h"
#include "valuetree/valueitem.h"

#include <QCoreApplication>
#include <QHash>
#include <QVariant>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <map>
#include <memory>
#include <random>

// What a lookup allocates, Qt's own memory included: every malloc of the process comes by here.
extern "C" void *__libc_malloc(std::size_t size);
namespace {
thread_local std::uint64_t t_allocations = 0;
}
extern "C" void *malloc(std::size_t size)
{
    ++t_allocations;
    return __libc_malloc(size);
}

namespace {

using values::Tree;
using Float = values::Value<double>;

/// Children a level, from the root down.
using Shape = std::array<int, 4>;
const std::map<std::string, Shape> kShapes = {
    {"100000 values, 10/10/10/100", {10, 10, 10, 100}},
    {"100000 values, 1/1/10/10000", {1, 1, 10, 10'000}},
    {"10000 values, 10/10/10/10", {10, 10, 10, 10}},
    {"10 siblings, 1/1/1/10", {1, 1, 1, 10}},
    {"10000 siblings, 1/1/1/10000", {1, 1, 1, 10'000}},
};

std::vector<QString> pathsOf(const Shape &shape)
{
    static const char *const kNames[] = {"Receiver%1", "Channel%1", "Group%1", "Frequency%1"};
    std::vector<QString> paths{QString()};
    for (std::size_t level = 0; level < shape.size(); ++level) {
        std::vector<QString> below;
        for (const QString &path : paths)
            for (int i = 0; i < shape[level]; ++i)
                below.push_back(path + '/' + QString(kNames[level]).arg(i));
        paths = std::move(below);
    }
    return paths;
}

/// A tree and a hash with the same values, and paths to look up that share no memory with either.
struct Fixture {
    explicit Fixture(const Shape &shape)
    {
        order = pathsOf(shape);
        for (const QString &path : order)
            tree.AddValue(path, new Float);
        for (const QString &path : pathsOf(shape))
            hash.insert(path, tree.GetValue(path));
        std::shuffle(order.begin(), order.end(), std::mt19937(1));
        for (QString &path : order)
            path = QString(path.constData(), path.size());
    }
    values::BaseTree tree;
    QHash<QString, values::ValueBase *> hash;
    std::vector<QString> order;

    static Fixture &of(const std::string &name)
    {
        static std::map<std::string, std::unique_ptr<Fixture>> made;
        auto &fixture = made[name];
        if (fixture == nullptr)
            fixture = std::make_unique<Fixture>(kShapes.at(name));
        return *fixture;
    }
};

template <typename Lookup>
void lookUp(benchmark::State &state, const Fixture &fixture, Lookup lookup)
{
    std::size_t next = 0;
    std::uint64_t lookups = 0;
    const std::uint64_t before = t_allocations;
    for (auto _ : state) {
        benchmark::DoNotOptimize(lookup(fixture.order[next]));
        next = next + 1 == fixture.order.size() ? 0 : next + 1;
        ++lookups;
    }
    state.counters["allocs"] = double(t_allocations - before) / double(lookups);
}

void printRatios(const Medians &medians)
{
    std::printf("\n%-32s %10s %10s %8s\n", "path lookup", "QHash ns", "tree ns", "ratio");
    for (const auto &[name, shape] : kShapes) {
        const double hash = medians.of("hash/" + name), tree = medians.of("tree/" + name);
        std::printf("%-32s %10.1f %10.1f %8.2f\n", name.c_str(), hash, tree, tree / hash);
    }
}

std::size_t heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

struct Cost {
    double buildNs, tearDownNs, bytes; // of one value
};

/// \a bytes counts everything but the names themselves.
template <typename Build>
Cost measure(const std::vector<QString> &paths, Build build)
{
    using Clock = std::chrono::steady_clock;
    const auto since = [&](Clock::time_point start) {
        return std::chrono::duration<double, std::nano>(Clock::now() - start).count() /
               double(paths.size());
    };
    const std::size_t before = heapBytes();
    const auto start = Clock::now();
    auto made = build(paths);
    const double buildNs = since(start);
    double names = 0;
    for (const QString &path : paths) // malloc's grain: 16 bytes, with 8 of its own
        names += double((24 + 2 * (path.size() - path.lastIndexOf('/')) + 8 + 15) / 16 * 16);
    const double bytes = (double(heapBytes() - before) - names) / double(paths.size());
    const auto end = Clock::now();
    made.reset();
    return {buildNs, since(end), bytes};
}

struct Slots : QObject {
    void changed(const QString &) {}
};

std::unique_ptr<QObject> buildObjects(const std::vector<QString> &paths)
{
    static Slots receiver;
    auto root = std::make_unique<QObject>();
    std::map<QString, QObject *> parents;
    for (const QString &path : paths) {
        const int cut = path.lastIndexOf('/');
        QObject *&parent = parents[path.left(cut)];
        if (parent == nullptr)
            parent = new QObject(root.get());
        auto *const object = new QObject(parent);
        object->setObjectName(path.mid(cut + 1));
        object->setProperty("value", 1.5);
        QObject::connect(object, &QObject::objectNameChanged, &receiver, &Slots::changed);
    }
    return root;
}

std::unique_ptr<values::BaseTree> buildTree(const std::vector<QString> &paths)
{
    auto tree = std::make_unique<values::BaseTree>();
    for (const QString &path : paths)
        tree->AddValue(path, new Float);
    return tree;
}

void printCosts()
{
    std::printf("\n%-24s %12s %12s %14s\n", "a value", "build ns", "tear down ns", "bytes - name");
    for (const int last : {10, 100, 1000}) {
        const auto paths = pathsOf({10, 10, 10, last});
        const auto print = [&](const char *name, auto build) {
            std::vector<Cost> costs(5);
            for (Cost &cost : costs)
                cost = measure(paths, build);
            std::sort(costs.begin(), costs.end(),
                      [](const Cost &a, const Cost &b) { return a.buildNs < b.buildNs; });
            const Cost median = costs[costs.size() / 2];
            std::printf("%-8s %15zu %12.0f %12.0f %14.0f\n", name, paths.size(), median.buildNs,
                        median.tearDownNs, median.bytes);
        };
        print("tree", buildTree);
        if (last <= 100)
            print("QObject", buildObjects);
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    std::vector<char *> arguments(argv, argv + argc);
    // Interleaved, so that a machine that slows down slows both sides.
    char repetitions[] = "--benchmark_repetitions=9";
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char aggregates[] = "--benchmark_report_aggregates_only=true";
    char shortRuns[] = "--benchmark_min_time=0.05";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaved, aggregates, shortRuns});
    int count = int(arguments.size());
    for (const auto &[name, shape] : kShapes) {
        const Fixture &fixture = Fixture::of(name);
        benchmark::RegisterBenchmark(("hash/" + name).c_str(), [&](benchmark::State &state) {
            lookUp(state, fixture, [&](const QString &path) { return fixture.hash.value(path); });
        });
        benchmark::RegisterBenchmark(("tree/" + name).c_str(), [&](benchmark::State &state) {
            lookUp(state, fixture,
                   [&](const QString &path) { return fixture.tree.GetValue(path); });
        });
    }
    benchmark::Initialize(&count, arguments.data());
    Medians medians(Medians::kCpuTime);
    benchmark::RunSpecifiedBenchmarks(&medians);
    printRatios(medians);
    printCosts();
    return 0;
}
