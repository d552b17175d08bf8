#ifndef BENCH_SERVICE_MANAGER_BUS_METHODS_H
#define BENCH_SERVICE_MANAGER_BUS_METHODS_H

#include "bench/json_lines/control_loop.h"
#include "bench/service_manager/manager.h"
#include "bench/service_manager/reaction_plan.h"

#include <systemd/sd-bus.h>

namespace bench::service_manager {

/// Carries out the methods that clients call on org.freedesktop.systemd1, of its manager object and its unit objects:
/// StartUnit, StopUnit, GetUnit, LoadUnit, ListUnits and its filtered kinds, Subscribe, Unsubscribe, and Get and GetAll
/// of properties. Sends the signals JobNew, JobRemoved and PropertiesChanged.
class Bus_methods {
 public:
    /// All must outlive this, and the loop's run.
    Bus_methods(Manager& manager, Control_loop& loop, sd_bus* bus) : manager_(manager), loop_(loop), bus_(bus) {}

    /// Answers the call; false when there is no such method.
    bool carry_out(sd_bus_message* call, Reaction const& reaction);

 private:
    void start_or_stop(sd_bus_message* call, bool start, Reaction const& reaction);
    void get_unit(sd_bus_message* call, bool load);
    void list_units(sd_bus_message* call, std::string const& method);
    void get_property(sd_bus_message* call);
    void get_all_properties(sd_bus_message* call);
    void end_job(Job const& job);
    void announce_change(Unit const& unit);

    Manager& manager_;
    Control_loop& loop_;
    sd_bus* bus_;
};

}  // namespace bench::service_manager

#endif
