#ifndef TESTS_FAULTS_TRACER_H
#define TESTS_FAULTS_TRACER_H

#include "call_stacks.h"
#include "plan.h"

#include <map>
#include <string>
#include <vector>

#include <sys/types.h>
#include <sys/user.h>

namespace faults {

/// The numbers of the calls at which a plan needs the threads to stop.
std::vector<long> watched_calls(std::vector<Fault> const& plan);

/// Watches one process to its end and does to its calls what a plan says.
class Tracer {
 public:
    /// From now on the process is watched. Throws `std::system_error` where that is not allowed.
    Tracer(pid_t pid, std::vector<Fault> plan, std::string const& report);

    /// Returns when the process has ended.
    void run();

 private:
    /// What is left to do when a call has returned.
    struct Return {
        bool has_failed{false};
        user_regs_struct before{};
        int error{0};
    };

    void stopped(pid_t thread, int status);
    bool at_call(pid_t thread);
    bool survey(pid_t thread, user_regs_struct const& registers, Call const& call);
    bool inject(pid_t thread, user_regs_struct const& registers, Call const& call);
    bool apply(pid_t thread, user_regs_struct registers, Call const& call, Fault const& fault);
    void after_call(pid_t thread);
    Site describe(Call const& call, user_regs_struct const& registers, Call_stack const& stack) const;

    pid_t pid_;
    std::vector<Fault> plan_;
    std::vector<unsigned> met_;  ///< calls that each fault's site has made
    std::string const report_file_;
    Report report_;
    Call_stacks stacks_;
    std::map<std::uint64_t, Site> sites_;  ///< in a survey
    std::map<pid_t, Return> returning_;
};

}  // namespace faults

#endif
