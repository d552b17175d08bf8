#ifndef BENCH_SERVICE_MANAGER_NOTIFY_SOCKET_H
#define BENCH_SERVICE_MANAGER_NOTIFY_SOCKET_H

#include "bench/service_manager/notification.h"

#include <optional>
#include <string>

namespace bench::service_manager {

/// The datagram socket that NOTIFY_SOCKET names for a service. The file goes with the object.
class Notify_socket {
 public:
    /// Binds to the path, over a file that an earlier run left there. Throws `std::system_error`.
    explicit Notify_socket(std::string path);
    ~Notify_socket();
    Notify_socket(Notify_socket const&) = delete;
    Notify_socket& operator=(Notify_socket const&) = delete;

    int descriptor() const { return descriptor_; }

    /// The next datagram that has arrived; nothing when none waits. Does not block.
    std::optional<Notification> receive() const;

 private:
    std::string path_;
    int descriptor_;
};

}  // namespace bench::service_manager

#endif
