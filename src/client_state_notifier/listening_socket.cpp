#include "client_state_notifier/listening_socket.h"

#include "base/system_error.h"
#include "utilities/logger.h"

#include <cerrno>
#include <system_error>

namespace client_state_notifier {

using Clock = Surroundings::Clock;

namespace {

// Nothing has failed: there is no connection (any more), or the call was interrupted.
bool is_nothing(int error) {
    return error == EINTR || error == EINVAL || error == EAGAIN;
}

// Failures of one connection, and a lack of descriptors or memory, which passes when somebody gives some back.
bool is_passing(int error) {
    return error == ECONNABORTED || error == EPERM || error == EPROTO || error == EMFILE || error == ENFILE ||
           error == ENOBUFS || error == ENOMEM;
}

}  // namespace

Listening_socket::Listening_socket(std::string const& path, Surroundings& surroundings)
    : surroundings_(surroundings), bound_(surroundings.listen(path)) {
    utilities::get_logger().LogInfo() << "socket created: " << path;
}

pollfd Listening_socket::poll_entry(Clock::time_point now) const {
    return {pause_end(now) ? -1 : bound_.socket.get_fd(), POLLIN, 0};
}

std::optional<Clock::time_point> Listening_socket::pause_end(Clock::time_point now) const {
    return paused_until_ > now ? std::optional(paused_until_) : std::nullopt;
}

std::optional<utilities::Socket> Listening_socket::accept() {
    int const connection = surroundings_.accept(bound_.socket);
    if (connection >= 0) {
        return utilities::Socket(connection, surroundings_.calls());
    }
    if (is_passing(errno)) {
        pause(errno);
    } else if (!is_nothing(errno)) {
        throw std::system_error(errno, std::generic_category(), "Socket::accept()");
    }
    return std::nullopt;
}

void Listening_socket::pause(int error) {
    paused_until_ = surroundings_.now() + k_pause;
    utilities::get_logger().LogError() << "no connection can be taken: " << base::system_error_text(error);
}

}  // namespace client_state_notifier
