#include "bench/service_manager/units.h"

#include <algorithm>

#include <fnmatch.h>

namespace bench::service_manager {

namespace {

bool has_listed_state(Unit const& unit, std::vector<std::string> const& states) {
    return states.empty() || std::any_of(states.begin(), states.end(), [&](std::string const& state) {
               return state == "loaded" || state == unit.active || state == unit.sub_state();
           });
}

bool has_listed_name(Unit const& unit, std::vector<std::string> const& patterns) {
    return patterns.empty() || std::any_of(patterns.begin(), patterns.end(), [&](std::string const& pattern) {
               return ::fnmatch(pattern.c_str(), unit.name.c_str(), FNM_NOESCAPE) == 0;
           });
}

}  // namespace

std::string group_of(std::string const& unit) {
    std::string const suffix = ".target";
    std::size_t const dash = unit.rfind('-');
    bool const is_target =
        unit.size() > suffix.size() && unit.compare(unit.size() - suffix.size(), suffix.size(), suffix) == 0;
    return is_target && dash != std::string::npos ? unit.substr(0, dash) : std::string();
}

Unit& Units::add(std::string const& name, std::string const& active) {
    Unit* unit = find(name);
    if (unit == nullptr) {
        unit = &units_.emplace_back(Unit{name, active, false});
    }
    unit->active = active;
    auto const group = conflicting(*unit);
    bool const group_is_loaded =
        std::any_of(group.begin(), group.end(), [](Unit const* other) { return other->loaded; });
    if (active != "inactive" || group_is_loaded) {
        load(*unit);
    }
    return *unit;
}

Unit* Units::find(std::string const& name) {
    auto const found = std::find_if(units_.begin(), units_.end(), [&](Unit const& unit) { return unit.name == name; });
    return found == units_.end() ? nullptr : &*found;
}

void Units::load(Unit& unit) {
    unit.loaded = true;
    for (Unit* const other : conflicting(unit)) {
        other->loaded = true;
    }
}

std::vector<Unit*> Units::conflicting(Unit const& unit) {
    std::string const group = group_of(unit.name);
    std::vector<Unit*> others;
    for (Unit& other : units_) {
        if (&other != &unit && !group.empty() && group_of(other.name) == group) {
            others.push_back(&other);
        }
    }
    return others;
}

std::vector<Unit const*> Units::matching(std::vector<std::string> const& states,
                                         std::vector<std::string> const& patterns) const {
    std::vector<Unit const*> result;
    for (Unit const& unit : units_) {
        if (unit.loaded && has_listed_state(unit, states) && has_listed_name(unit, patterns)) {
            result.push_back(&unit);
        }
    }
    return result;
}

}  // namespace bench::service_manager
