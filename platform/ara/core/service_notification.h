#ifndef ARA_CORE_SERVICE_NOTIFICATION_H
#define ARA_CORE_SERVICE_NOTIFICATION_H

#include <chrono>
#include <string_view>

namespace ara::core {

/// Longest time that a notification waits for room in the service manager's queue.
inline constexpr std::chrono::milliseconds k_notification_time_limit{100};

/// Sends one line of the sd_notify protocol, such as "READY=1", to the datagram socket that the environment names in
/// NOTIFY_SOCKET (a path, or an abstract name after '@'). Does nothing when there is no such variable. Throws
/// `std::system_error` when the line can't be delivered.
///
/// libsystemd's own sd_notify waits without a limit for a service manager whose queue is full, and would stop the
/// caller's cycle with it; this one gives up after `k_notification_time_limit`.
void notify_service_manager(std::string_view line);

}  // namespace ara::core

#endif
