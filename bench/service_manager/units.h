#ifndef BENCH_SERVICE_MANAGER_UNITS_H
#define BENCH_SERVICE_MANAGER_UNITS_H

#include <deque>
#include <string>
#include <vector>

namespace bench::service_manager {

/// A unit of which the service manager has a file. Like the real one it tells only of units that it has loaded: those
/// that were started, looked up by LoadUnit, or belong to the group of one that was.
struct Unit {
    std::string name;
    std::string active{"inactive"};  ///< ActiveState: "active", "activating", "deactivating", "inactive", "failed"
    bool loaded{false};

    /// SubState of a target in that ActiveState.
    std::string sub_state() const { return active == "active" ? "active" : "dead"; }
};

/// The units by name. Targets named GROUP-STATE.target conflict with the others of their group: starting one makes them
/// inactive. Pointers to units stay good until the table's end.
class Units {
 public:
    /// A unit that is active is loaded, and with it its group. The unit's new state, when it is there already.
    Unit& add(std::string const& name, std::string const& active);

    Unit* find(std::string const& name);
    void load(Unit& unit);

    /// The others of the unit's group.
    std::vector<Unit*> conflicting(Unit const& unit);

    /// Loaded units whose name matches one of the shell patterns and one of whose states is listed; an empty list
    /// matches all.
    std::vector<Unit const*> matching(std::vector<std::string> const& states,
                                      std::vector<std::string> const& patterns) const;

    std::deque<Unit> const& all() const { return units_; }

 private:
    std::deque<Unit> units_;
};

/// "MachineState" for "MachineState-Running.target"; empty for a unit that belongs to no group.
std::string group_of(std::string const& unit);

}  // namespace bench::service_manager

#endif
