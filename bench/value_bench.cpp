// Values, their command strings and undo, each beside its rival: rounds of both take turns, so that
// a busy machine slows both. "ours" and "rival" are medians in ns an operation, "ratio" is ours to
// the rival's.
#include "valueclasses/undo/undomanager.h"
#include "valueclasses/value.h"
#include "valueclasses/valuenumeric.h"
#include "valuesignal.h"

#if defined(SPECTREE_HAS_PROTOBUF)
#include "valuecommand.pb.h"
#endif

#include <QCoreApplication>
#include <QUndoStack>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

namespace {

using namespace values;
using Round = std::function<void(int operations)>;

double median(std::vector<double> times)
{
    std::nth_element(times.begin(), times.begin() + long(times.size() / 2), times.end());
    return times[times.size() / 2];
}

/// Processor time of this thread, so that what else runs counts less.
double now()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e9 * double(time.tv_sec) + double(time.tv_nsec);
}

double timed(const Round &round, int operations)
{
    const double start = now();
    round(operations);
    return (now() - start) / operations;
}

void compare(benchmark::State &state, int operations, const Round &ours, const Round &rival)
{
    std::vector<double> oursTimes, rivalTimes;
    for (auto _ : state) {
        oursTimes.push_back(timed(ours, operations));
        rivalTimes.push_back(timed(rival, operations));
    }
    state.counters["ours"] = median(oursTimes);
    state.counters["rival"] = median(rivalTimes);
    state.counters["ratio"] = median(oursTimes) / median(rivalTimes);
}

struct Counter : IObserver {
    void Update(Observable *, TChangeCode) override { ++count; }
    int count = 0;
};

void setValue(benchmark::State &state)
{
    const auto count = std::size_t(state.range(0));
    Value<double> value;
    std::vector<Counter> observers(count);
    SignalSource source;
    std::vector<SignalSink> sinks(count);
    for (std::size_t i = 0; i < count; ++i) {
        value.AddObserver(&observers[i]);
        QObject::connect(&source, &SignalSource::changed, &sinks[i], &SignalSink::take,
                         Qt::DirectConnection);
    }
    double next = 0.0;
    compare(
        state, 20000,
        [&](int n) {
            while (n-- > 0)
                value.SetValue(next += 1.0, nullptr);
        },
        [&](int n) {
            while (n-- > 0)
                source.set(next += 1.0);
        });
    state.counters["sizeof"] = sizeof(Value<double>);
    state.counters["sizeof_numeric"] = sizeof(ValueNumeric<double>);
    value.DeleteObservers();
}
BENCHMARK(setValue)->Arg(1)->Arg(10)->Arg(100);

/// Writes one command and parses it again.
Round ours(Value<double> &value, int mode)
{
    using Parsed = std::vector<std::unique_ptr<KELM::ICommand>>;
    return [&value, mode, bytes = std::string(), list = std::make_shared<Parsed>()](int n) mutable {
        Parsed &parsed = *list;
        while (n-- > 0) {
            bytes.clear();
            parsed.clear();
            CommandSetValue<double>(&value, 0.1 * n, nullptr).AddCommandString(bytes, mode);
            value.SetCommandString(bytes, parsed, nullptr, mode);
            benchmark::DoNotOptimize(parsed.data());
        }
    };
}

#if defined(SPECTREE_HAS_PROTOBUF)
void commandBinary(benchmark::State &state)
{
    Value<double> value;
    compare(state, 20000, ours(value, ModeBinary), [bytes = std::string()](int n) mutable {
        while (n-- > 0) {
            ValueCommand written, read;
            written.set_id(20);
            written.set_value(0.1 * n);
            written.SerializeToString(&bytes);
            read.ParseFromString(bytes);
            benchmark::DoNotOptimize(read);
        }
    });
}
BENCHMARK(commandBinary);
#endif

void commandText(benchmark::State &state)
{
    Value<double> value;
    compare(state, 20000, ours(value, ModeText), [](int n) {
        char text[400];
        while (n-- > 0) {
            std::snprintf(text, sizeof text, "%d;%f;", 20, 0.1 * n);
            char *end = nullptr;
            const long id = std::strtol(text, &end, 10);
            const double number = std::strtod(end + 1, &end);
            benchmark::DoNotOptimize(id);
            benchmark::DoNotOptimize(number);
        }
    });
}
BENCHMARK(commandText);

/// 100 000 commands in one string; the rival is ten times 10 000.
void parseLinear(benchmark::State &state)
{
    Value<double> value;
    const auto parse = [&value](int commands, int times) {
        std::string bytes;
        for (int i = 0; i < commands; ++i)
            CommandSetValue<double>(&value, i, nullptr).AddCommandString(bytes, ModeBinary);
        return [&value, bytes, times](int) {
            for (int i = 0; i < times; ++i) {
                std::vector<std::unique_ptr<KELM::ICommand>> parsed;
                value.SetCommandString(bytes, parsed, nullptr, ModeBinary);
            }
        };
    };
    compare(state, 100000, parse(100000, 1), parse(10000, 10));
}
BENCHMARK(parseLinear)->Unit(benchmark::kMillisecond);

/// One transaction of 10 000 changes, observed; the rival is ten of 1 000.
void transactionLinear(benchmark::State &state)
{
    Value<double> value;
    struct Fetch : IObserver {
        void Update(Observable *, TChangeCode) override
        {
            size += value->GetCommandStringForTransmission(ModeBinary).size();
        }
        Value<double> *value;
        std::size_t size = 0;
    } fetch;
    fetch.value = &value;
    value.AddObserver(&fetch);
    value.CommandRecordingOnForTransmission();
    const auto change = [&value](int changes, int times) {
        return [&value, changes, times](int) {
            for (int i = 0; i < times; ++i) {
                const ValueTransaction transaction = value.CreateTransaction(CC_VALUE, nullptr);
                for (int n = 0; n < changes; ++n)
                    value.SetValue(value.GetValue() + 1.0, nullptr);
            }
        };
    };
    compare(state, 10000, change(10000, 1), change(1000, 10));
    value.DeleteObservers();
}
BENCHMARK(transactionLinear);

class SetNumber final : public QUndoCommand {
public:
    SetNumber(double *target, double value) : m_target(target), m_old(*target), m_new(value) {}
    void undo() override { *m_target = m_old; }
    void redo() override { *m_target = m_new; }

private:
    double *m_target;
    double m_old, m_new;
};

/// 100 000 entries recorded and run back.
void undo(benchmark::State &state)
{
    Value<double> value;
    UndoManager manager(1);
    value.SetUndoManager(&manager);
    double number = 0.0;
    compare(
        state, 100000,
        [&](int n) {
            manager.OpenNewUndoStack("round");
            for (; n > 0; --n)
                value.SetValue(n, nullptr);
            manager.FinishCurrentUndoStack();
            manager.ExecuteUndoStacks(1);
        },
        [&](int n) {
            QUndoStack stack;
            for (int i = 0; i < n; ++i)
                stack.push(new SetNumber(&number, i));
            while (stack.canUndo())
                stack.undo();
        });
    value.SetUndoManager(nullptr);
}
BENCHMARK(undo)->Unit(benchmark::kMillisecond);

/// 10 000 transactions in one stack; the rival is ten stacks of 1 000.
void undoTransactionsLinear(benchmark::State &state)
{
    Value<double> value;
    UndoManager manager(1);
    value.SetUndoManager(&manager);
    const auto change = [&](int transactions, int times) {
        return [&value, &manager, transactions, times](int) {
            for (int i = 0; i < times; ++i) {
                manager.OpenNewUndoStack("round");
                for (int n = 0; n < transactions; ++n) {
                    const ValueTransaction transaction = value.CreateTransaction(CC_VALUE, nullptr);
                    value.SetValue(value.GetValue() + 1.0, nullptr);
                }
                manager.FinishCurrentUndoStack();
                manager.ExecuteUndoStacks(1);
            }
        };
    };
    compare(state, 10000, change(10000, 1), change(1000, 10));
    value.SetUndoManager(nullptr);
}
BENCHMARK(undoTransactionsLinear);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
