#ifndef BENCH_PROCESS_PRIVATE_BUS_H
#define BENCH_PROCESS_PRIVATE_BUS_H

#include "bench/process/child_process.h"

#include <memory>
#include <string>

namespace bench {

/// A D-Bus daemon of our own on a socket in the given directory, on which everybody may do everything. It ends with
/// the object.
class Private_bus {
 public:
    /// Returns once the bus accepts connections. Throws `std::runtime_error` when it does not, or when the program
    /// dbus-daemon is not installed.
    explicit Private_bus(std::string const& directory);
    ~Private_bus();
    Private_bus(Private_bus const&) = delete;
    Private_bus& operator=(Private_bus const&) = delete;

    /// "unix:path=..." as DBUS_SYSTEM_BUS_ADDRESS takes it.
    std::string const& address() const { return address_; }

    Child_process& process() { return *daemon_; }

 private:
    std::string address_;
    std::unique_ptr<Child_process> daemon_;
};

}  // namespace bench

#endif
