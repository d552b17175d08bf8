#ifndef TESTS_UNIT_EXPLORATION_WALK_H
#define TESTS_UNIT_EXPLORATION_WALK_H

#include "bench/rules/rules.h"
#include "machine.h"
#include "point.h"
#include "power_off_channel.h"
#include "status_of_walk.h"

#include <optional>

namespace exploration {

/// The surroundings of a machine that do not change while it lives.
struct Surroundings {
    bool nm_usage;
    bool has_power_off_service;
};

/// Walks a machine from point to point. Each step is done by the real machine, followed in the point, and checked
/// against the rules; a rule that is broken is a failed expectation of the test.
class Walk {
 public:
    Walk(Surroundings const& surroundings, std::string const& status_file, Driver_log& log,
         Power_off_channel const* power_off_service);

    Point const& point() const { return point_; }

    /// Does the step; a cycle comes back with all conditions that were asked for.
    Action go(Action const& action);

 private:
    void go_through_cycle(Action& action);
    void follow(bench::rules::Row const& row);
    void check_word(unsigned state);
    void check_way_of_shutdown() const;
    void check_clients_of_running_machine();
    void check_requests();
    bool is_fast_shutdown() const;

    Surroundings surroundings_;
    Power_off_channel const* power_off_service_;
    Status_of_walk status_;  ///< before the machine, which writes it
    Machine machine_;
    Point point_;
};

}  // namespace exploration

#endif
