#pragma once
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <string>
#include <string_view>

/// Ends a run with a table: for each group the best time of every form, and how many times as long as the group's own
/// forms its peers took. Benchmarks are named group/form; forms that start with "krender" are the group's own.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                note(run.run_name.function_name, run.GetAdjustedRealTime());
        ConsoleReporter::ReportRuns(runs);
    }

    void printRatios() const
    {
        std::puts("");
        for (const auto& [group, forms] : fGroups)
            for (const auto& [own, ownTime] : forms)
                if (isOwn(own))
                    for (const auto& [peer, peerTime] : forms)
                        if (!isOwn(peer))
                            std::printf("%-10s %-20s %8.3f   %-20s %8.3f   %6.2f times\n", group.c_str(), own.c_str(),
                                        ownTime, peer.c_str(), peerTime, peerTime / ownTime);
    }

private:
    static bool isOwn(std::string_view form) { return form.starts_with("krender"); }

    void note(const std::string& name, double time)
    {
        const std::size_t slash = name.find('/');
        double& best = fGroups[name.substr(0, slash)]
                           .try_emplace(name.substr(slash + 1), std::numeric_limits<double>::infinity())
                           .first->second;
        best = std::min(best, time);
    }

    std::map<std::string, std::map<std::string, double>> fGroups;
};
