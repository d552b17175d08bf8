#ifndef BENCHMARKS_MACHINE_TIMES_REPORTER_H
#define BENCHMARKS_MACHINE_TIMES_REPORTER_H

#include "benchmarks/machine/figures.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace benchmarks {

/// Prints what the console's reporter does, and keeps the processor time of each benchmark, for who tells rows of them.
class Times_reporter : public benchmark::ConsoleReporter {
 public:
    Times_reporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(std::vector<Run> const& runs) override {
        for (auto const& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                auto const& name = run.run_name;
                auto const arguments = name.args.empty() ? "" : "/" + name.args;
                times_[name.function_name + arguments].push_back(run.GetAdjustedCPUTime());
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    /// The median of the repetitions, in the benchmark's unit; 0 for one that was not run.
    double time_of(std::string const& name) const {
        auto const found = times_.find(name);
        if (found == times_.end()) {
            return 0.0;
        }
        auto times = found->second;
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }

 private:
    std::map<std::string, std::vector<double>> times_;
};

}  // namespace benchmarks

#endif
