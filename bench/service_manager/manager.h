#ifndef BENCH_SERVICE_MANAGER_MANAGER_H
#define BENCH_SERVICE_MANAGER_MANAGER_H

#include "bench/service_manager/notification.h"
#include "bench/service_manager/reaction_plan.h"
#include "bench/service_manager/units.h"

#include <cstdint>
#include <string>
#include <vector>

namespace bench::service_manager {

/// A request to start or stop a unit, from its acceptance to its end.
struct Job {
    std::uint32_t id{0};
    Unit* unit{nullptr};
    bool start{true};
    std::string result{"done"};
};

/// Units, their jobs, the reactions told beforehand and what services reported; all that the service manager knows,
/// without a bus. One thread.
class Manager {
 public:
    Units& units() { return units_; }
    Reaction_plan& plan() { return plan_; }
    Reports& reports() { return reports_; }

    /// Accepts a request: the unit is loaded and on its way. A unit that is there already stays as it is.
    Job begin(Unit& unit, bool start, std::string const& result);

    /// The job's end. With "done" the unit has reached its state, and the targets in conflict with a started one are
    /// inactive; with any other result a unit that was to start has failed. Returns the units that changed.
    std::vector<Unit*> end(Job const& job);

 private:
    Units units_;
    Reaction_plan plan_;
    Reports reports_;
    std::uint32_t jobs_{0};
};

}  // namespace bench::service_manager

#endif
