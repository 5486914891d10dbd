#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <map>
#include <string>

/// Prints the usual lines, and remembers the medians for a table of ratios.
class Medians : public benchmark::ConsoleReporter {
public:
    enum Clock { kRealTime, kCpuTime };
    explicit Medians(Clock clock) : m_clock(clock) {}

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &one : runs)
            if (one.run_type == Run::RT_Aggregate && one.aggregate_name == "median")
                m_times[nameOf(one)] =
                    m_clock == kCpuTime ? one.GetAdjustedCPUTime() : one.GetAdjustedRealTime();
    }

    /// By "<function>", or "<function>/<arguments>".
    const std::map<std::string, double> &all() const { return m_times; }
    /// NaN when \a name did not run.
    double of(const std::string &name) const
    {
        const auto found = m_times.find(name);
        return found == m_times.end() ? std::nan("") : found->second;
    }

private:
    static std::string nameOf(const Run &run)
    {
        const auto &name = run.run_name;
        return name.args.empty() ? name.function_name : name.function_name + "/" + name.args;
    }

    const Clock m_clock;
    std::map<std::string, double> m_times;
};
