#ifndef BENCH_HYPERVISOR_KEY_NAMES_H
#define BENCH_HYPERVISOR_KEY_NAMES_H

#include <cstdint>
#include <optional>
#include <string>

namespace bench::hypervisor {

/// The code of a key by the name that commands use: "a" to "z", "power", "enter", "space".
std::optional<std::uint16_t> key_code(std::string const& name);

/// The number of an event type by the kernel's name for it, such as "EV_KEY".
std::optional<std::uint16_t> event_type(std::string const& name);

}  // namespace bench::hypervisor

#endif
