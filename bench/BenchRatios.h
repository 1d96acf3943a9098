#pragma once
// A console reporter that also remembers each benchmark's time per iteration, so that a program
// can print "library call / bare call" ratios after one run. The time is CPU time, except for a
// benchmark that asked for real time (its name ends in "/real_time"): that is one whose peer runs
// in a child process, whose CPU time this process never sees.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& r : runs)
            if (r.run_type == Run::RT_Iteration)
                m_times[r.benchmark_name()] = usesRealTime(r.benchmark_name()) ? r.GetAdjustedRealTime()
                                                                               : r.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    /// Prints one line per pair and returns false when a ratio is above its target (a target of 0
    /// or less: shown for information only).
    bool printRatios(const std::vector<std::pair<std::string, std::string>>& pairs,
                     const std::vector<double>& targets) const
    {
        bool allMet = true;
        std::printf("\n%-44s %-30s %8s %8s\n", "library call", "bare call", "ratio", "target");
        for (size_t i = 0; i < pairs.size(); ++i) {
            auto a = m_times.find(pairs[i].first), b = m_times.find(pairs[i].second);
            if (a == m_times.end() || b == m_times.end() || b->second <= 0)
                continue;
            const double ratio = a->second / b->second;
            if (targets[i] <= 0) { // shown for information, no target
                std::printf("%-44s %-30s %8.2f %8s\n", pairs[i].first.c_str(), pairs[i].second.c_str(), ratio, "-");
                continue;
            }
            const bool met = ratio <= targets[i];
            allMet = allMet && met;
            std::printf("%-44s %-30s %8.2f %7.1fx%s\n", pairs[i].first.c_str(), pairs[i].second.c_str(), ratio,
                        targets[i], met ? "" : "  (missed)");
        }
        return allMet;
    }

private:
    static bool usesRealTime(const std::string& name)
    {
        static const std::string suffix = "/real_time";
        return name.size() >= suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
    }

    std::map<std::string, double> m_times;
};
