#ifndef ARA_CORE_SERVICE_NOTIFICATION_H
#define ARA_CORE_SERVICE_NOTIFICATION_H

#include "base/descriptor.h"

#include <chrono>
#include <optional>
#include <string_view>
#include <system_error>

// Lines of the sd_notify protocol, such as "READY=1", to the datagram socket that the environment names in
// NOTIFY_SOCKET (a path, or an abstract name after '@'). Where there is no such variable nobody wants to hear, and all
// succeed.
//
// The service manager's queue may be full: it has not read for a while, or others fill it. libsystemd's own sd_notify
// would wait for room without a limit and stop the caller's cycle with it. Here a line waits for a moment, or not at
// all and is owed: its caller sends it again in its next cycle. One thread.
namespace ara::core {

/// Longest time that a notification waits for room in the service manager's queue.
inline constexpr std::chrono::milliseconds k_notification_time_limit{100};

/// Sends a line, and waits for room if it must. Throws `std::system_error` when the line can't be delivered.
void notify_service_manager(std::string_view line);

/// Reports READY=1 and waits for nothing: what can't go out now is owed and goes out ahead of a later beat. Throws
/// `std::system_error` when another try is of no use.
void report_ready();

/// Reports STOPPING=1, and waits for room if it must. From then on the service manager wants no beat. Throws
/// `std::system_error` when the line can't be delivered.
void report_stopping();

/// A process's beats. They come from one socket, which is kept, and go to the name: a service manager that was started
/// anew is found.
class Beats {
 public:
    /// Sends WATCHDOG=1 and waits for nothing; returns what kept it. A READY=1 that is owed goes out first; while it
    /// can't, no beat is due, since the service manager's watchdog starts with READY=1.
    std::error_code send();

 private:
    std::optional<base::Descriptor> socket_;  ///< once there was a beat
};

/// Whether the same line may go out a moment later: when there was no room, no descriptor or no memory for it. Nobody
/// who listens, a socket that this process may not use and a name that is none stay what they are.
bool may_pass(std::error_code const& error);

/// What to throw for it.
std::system_error not_notified(std::error_code const& error);

/// WATCHDOG_USEC, the time within which the service manager wants a beat. Nothing when it wants none of this process:
/// WATCHDOG_PID names another, or this one has reported that it stops, and not that it is ready since.
std::optional<std::chrono::microseconds> watchdog_time();

}  // namespace ara::core

#endif
