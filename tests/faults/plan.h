#ifndef TESTS_FAULTS_PLAN_H
#define TESTS_FAULTS_PLAN_H

#include "calls.h"

#include <cstdint>
#include <string>
#include <vector>

/// What the watcher of a daemon is told and what it tells, as lines of text in two files.
namespace faults {

/// What happens to a call.
enum class Way { fails, is_short, is_met_by_a_signal };

/// One call of a life: the `position`-th one (from 1) that is made with this stack.
struct Fault {
    long call{0};
    std::uint64_t site{0};  ///< of the call's stack
    unsigned position{1};
    Way way{Way::fails};
    int value{0};  ///< the error, or the signal
};

/// Where a call was made: what it was for, and who called, innermost first.
struct Site {
    long call{0};
    std::uint64_t id{0};
    Subject subject{Subject::none};
    bool is_nonblocking{false};
    unsigned count{0};  ///< calls in one life
    std::vector<std::string> frames;
};

/// A plan without a fault asks for a report of all calls.
std::vector<Fault> read_plan(std::string const& file);
void write_plan(std::string const& file, std::vector<Fault> const& faults);

/// What a watcher has seen: the sites, and how many of the plan's faults came to pass.
struct Report {
    std::vector<Site> sites;
    unsigned hits{0};
    int watcher{0};  ///< the process that wrote it, at its end; 0 before
};
Report read_report(std::string const& file);
void write_report(std::string const& file, Report const& report);

/// "sendto EAGAIN", "read short", "poll SIGTERM".
std::string text_of(Fault const& fault);

}  // namespace faults

#endif
