#ifndef BENCH_SERVICE_MANAGER_BUS_CALL_H
#define BENCH_SERVICE_MANAGER_BUS_CALL_H

#include "bench/service_manager/units.h"

#include <memory>
#include <string>
#include <vector>

#include <systemd/sd-bus.h>

namespace bench::service_manager {

struct Message_deleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
/// A message of the bus that is held as long as this.
using Message = std::unique_ptr<sd_bus_message, Message_deleter>;

inline Message hold(sd_bus_message* message) {
    return Message(sd_bus_message_ref(message));
}

/// The object of a unit, such as /org/freedesktop/systemd1/unit/a_2db_2etarget, and back.
std::string path_of(std::string const& unit);
std::string unit_at(std::string const& path);

/// The first argument of a call when it is a text, else empty. Reading the call starts at its beginning again.
std::string first_text(sd_bus_message* call);

/// The second argument of a call whose first two are texts, else empty; the same for the reading.
std::string second_text(sd_bus_message* call);

/// The next argument, a list of texts; empty when the call has none there.
std::vector<std::string> read_texts(sd_bus_message* call);

/// What unit objects tell: name and value of each property of org.freedesktop.systemd1.Unit that is played.
std::vector<std::pair<std::string, std::string>> properties_of(Unit const& unit);

/// Appends the units in the form of ListUnits: a(ssssssouso).
void append_units(sd_bus_message* reply, std::vector<Unit const*> const& units);

}  // namespace bench::service_manager

#endif
