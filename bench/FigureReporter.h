// Benchmarks of functions, each against a budget, and where a machine changes the figure against a
// floor: the least work that any implementation has to do, measured in the same run.
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// What a figure is measured by.
enum class Clock {
    Wall,
    Processor, ///< not stretched by whatever else the machine does
};

/// The standard table of a benchmark program, after which its figures can be printed as lines of
/// the form `figure: <name> = <value> (budget <= <x>, floor <y>) ok|MISSED`.
class FigureReporter : public benchmark::ConsoleReporter
{
public:
    FigureReporter()
        : ConsoleReporter(OO_None)
    { }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (!hasFailed(run) && run.run_type == Run::RT_Iteration)
                m_runs.insert({run.benchmark_name(), run});
        }
    }

    /// How many times longer `name` took than `floorName`. Nothing is printed for what did not run.
    void printRatio(const std::string &name, const std::string &floorName, double budget,
                    Clock clock = Clock::Wall) const
    {
        const auto run = m_runs.find(name);
        const auto floor = m_runs.find(floorName);
        if (run == m_runs.end() || floor == m_runs.end())
            return;
        const auto time = [clock](const Run &measured) {
            return clock == Clock::Wall ? measured.GetAdjustedRealTime()
                                        : measured.GetAdjustedCPUTime();
        };
        const double milliseconds = time(run->second);
        const double floorMilliseconds = time(floor->second);
        const double ratio = milliseconds / floorMilliseconds;
        std::printf(
            "figure: %s = %.2f x floor, %.1f ms (budget <= %.1f x floor, floor %.1f ms) %s\n",
            name.c_str(), ratio, milliseconds, budget, floorMilliseconds,
            ratio <= budget ? "ok" : "MISSED");
    }

    /// The counter `counter` of `name`, in milliseconds.
    void printCounter(const std::string &name, const std::string &counter, double budget) const
    {
        const auto run = m_runs.find(name);
        if (run == m_runs.end())
            return;
        const double milliseconds = run->second.counters.at(counter);
        std::printf("figure: %s, %s = %.3f ms (budget <= %.1f ms) %s\n", name.c_str(),
                    counter.c_str(), milliseconds, budget,
                    milliseconds <= budget ? "ok" : "MISSED");
    }

    /// Bytes per second of `name`, in MB/s, which are to be at least `budget`, and those of
    /// `floorName`.
    void printRate(const std::string &name, const std::string &floorName, double budget) const
    {
        const auto run = m_runs.find(name);
        const auto floor = m_runs.find(floorName);
        if (run == m_runs.end() || floor == m_runs.end())
            return;
        const double rate = run->second.counters.at("bytes_per_second") / 1'000'000;
        const double floorRate = floor->second.counters.at("bytes_per_second") / 1'000'000;
        std::printf("figure: %s = %.0f MB/s (budget >= %.0f MB/s, floor %.0f MB/s) %s\n",
                    name.c_str(), rate, budget, floorRate, rate >= budget ? "ok" : "MISSED");
    }

private:
    /// A template because the field's name depends on the library: from 1.8 on it is the second.
    template <typename AnyRun>
    static bool hasFailed(const AnyRun &run)
    {
        if constexpr (requires { run.error_occurred; })
            return run.error_occurred;
        else
            return run.skipped != 0;
    }

    std::map<std::string, Run> m_runs;
};
