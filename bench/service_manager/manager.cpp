#include "bench/service_manager/manager.h"

namespace bench::service_manager {

namespace {

void change(Unit& unit, std::string const& active, std::vector<Unit*>& changed) {
    if (unit.active != active) {
        unit.active = active;
        changed.push_back(&unit);
    }
}

}  // namespace

Job Manager::begin(Unit& unit, bool start, std::string const& result) {
    units_.load(unit);
    if (start && unit.active != "active") {
        unit.active = "activating";
    }
    if (!start && unit.active != "inactive") {
        unit.active = "deactivating";
    }
    return {++jobs_, &unit, start, result};
}

std::vector<Unit*> Manager::end(Job const& job) {
    std::vector<Unit*> changed;
    if (job.result != "done") {
        change(*job.unit, job.start ? "failed" : "active", changed);
        return changed;
    }
    change(*job.unit, job.start ? "active" : "inactive", changed);
    if (job.start) {
        for (Unit* const other : units_.conflicting(*job.unit)) {
            change(*other, "inactive", changed);
        }
    }
    return changed;
}

}  // namespace bench::service_manager
