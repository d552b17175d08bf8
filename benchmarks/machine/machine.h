#ifndef BENCHMARKS_MACHINE_MACHINE_H
#define BENCHMARKS_MACHINE_MACHINE_H

#include "bench/process/child_process.h"
#include "bench/process/player.h"
#include "bench/vehicle/vehicle.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace benchmarks {

/// Paths of the machine as the daemon finds them.
inline constexpr char const* k_input_device = "/dev/input/event0";
inline constexpr char const* k_status_file = "/sys/vmctl/set_status";

/// The vehicle with the example configuration and a period; without network management, or with a network manager and
/// so many applications that may keep communication alive. Programs are started in it as a service manager would: with
/// the notify socket, the bus and a watchdog of two seconds.
class Machine {
 public:
    explicit Machine(unsigned period_ms = 100, unsigned applications = 0);

    std::unique_ptr<bench::Child_process> start(std::vector<std::string> const& words);
    /// `starter` is a program, and its arguments, that becomes the daemon; empty for none.
    std::unique_ptr<bench::Child_process> start_daemon(std::vector<std::string> starter = {});

    /// Waits for a word in the status file, from a position of the hypervisor's messages on; returns its time in ns.
    std::int64_t await_word(std::string const& word, std::size_t from);

    bench::Player& hypervisor() { return vehicle_.hypervisor(); }
    bench::Player& service_manager() { return vehicle_.service_manager(); }
    bench::vehicle::Dlt_reader& log() { return vehicle_.log(); }

 private:
    bench::vehicle::Vehicle vehicle_;
    std::optional<bench::Player> network_manager_;
};

/// Runs a benchmark in a world of its own and returns its exit status; 1 with a text that says what is missing where
/// the machine allows no such world. Call it from `main`.
int run_in_world(char const* program, std::function<int()> const& benchmark);

}  // namespace benchmarks

#endif
