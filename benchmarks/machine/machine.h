#ifndef BENCHMARKS_MACHINE_MACHINE_H
#define BENCHMARKS_MACHINE_MACHINE_H

#include "bench/process/child_process.h"
#include "bench/process/player.h"
#include "bench/process/private_bus.h"
#include "bench/process/scratch_directory.h"

#include <memory>
#include <string>
#include <vector>

namespace benchmarks {

/// The daemon's surroundings: the hypervisor with one keyboard, a bus with the service manager on it, a DLT daemon, and
/// a configuration with a period of 100 ms and without network management. One in a process, made before any thread.
class Machine {
 public:
    /// Throws when the machine allows no namespaces or no FUSE, with a text that says what is missing.
    Machine();

    /// Starts a program in these surroundings, as a service manager would: with the notify socket and a watchdog.
    std::unique_ptr<bench::Child_process> start(std::vector<std::string> const& words) const;
    std::unique_ptr<bench::Child_process> start_daemon() const;

    /// Waits for a word in the status file, from a position of the hypervisor's messages on; returns its time in ns.
    std::int64_t await_word(std::string const& word, std::size_t from);

    bench::Player& hypervisor() { return *hypervisor_; }
    bench::Player& service_manager() { return *service_manager_; }
    std::string status_file() const { return scratch_.file("vehicle/vmctl/set_status"); }

 private:
    void write_configuration() const;
    void start_dlt();

    bench::Scratch_directory scratch_;
    std::unique_ptr<bench::Player> hypervisor_;
    std::unique_ptr<bench::Private_bus> bus_;
    std::unique_ptr<bench::Player> service_manager_;
    std::unique_ptr<bench::Child_process> dlt_;
};

}  // namespace benchmarks

#endif
