#ifndef BENCH_SERVICE_MANAGER_NOTIFICATION_H
#define BENCH_SERVICE_MANAGER_NOTIFICATION_H

#include <cstdint>
#include <map>
#include <string>

namespace bench::service_manager {

/// One datagram of a service to the notify socket: assignments, one a line, such as "READY=1".
struct Notification {
    std::int64_t time{0};  ///< CLOCK_MONOTONIC nanoseconds at its receipt
    int pid{0};            ///< of the sender, as the kernel vouches for it
    std::map<std::string, std::string> variables;
};

/// The assignments of a datagram; a line without "=" is a variable with an empty value.
std::map<std::string, std::string> parse_assignments(std::string const& datagram);

/// What the services have reported so far.
struct Reports {
    std::uint64_t ready{0};
    std::uint64_t stopping{0};
    std::uint64_t watchdog{0};
    std::int64_t last_watchdog{0};  ///< time of the newest WATCHDOG=1; 0 when there was none

    void count(Notification const& notification);
};

}  // namespace bench::service_manager

#endif
