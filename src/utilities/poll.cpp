#include "utilities/poll.h"

#include <cerrno>
#include <ctime>
#include <system_error>

namespace utilities {

bool poll(std::vector<pollfd>& descriptors, long timeout_ms, Socket_calls& calls) {
    timespec const timeout{timeout_ms / 1000, timeout_ms % 1000 * 1'000'000};
    for (;;) {
        int const ready = calls.poll(descriptors.data(), descriptors.size(), timeout_ms < 0 ? nullptr : &timeout);
        if (ready >= 0) {
            return ready > 0;
        }
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "Socket::poll()");
        }
    }
}

pollfd create_pollfd_helper(short events, Socket const& socket) {
    return {socket.get_fd(), events, 0};
}

}  // namespace utilities
