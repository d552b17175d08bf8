#include "client_state_notifier/listening_socket.h"

#include "base/system_error.h"
#include "utilities/logger.h"

#include <cerrno>
#include <system_error>

#include <sys/socket.h>

namespace client_state_notifier {

using Clock = std::chrono::steady_clock;

namespace {

constexpr mode_t k_directory_mode = 0755;
constexpr int k_backlog = 10;

std::string const& with_free_place(std::string const& path) {
    utilities::make_dirs(utilities::get_containing_directory(path), k_directory_mode);
    utilities::delete_file(path);
    return path;
}

void bind_to(utilities::Socket const& socket, std::string const& path) {
    auto const address = utilities::create_unix_address(path);
    if (::bind(socket.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), "Socket::bind(...)");
    }
}

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

Listening_socket::Listening_socket(std::string const& path)
    : socket_(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0), socket_file_(with_free_place(path), false) {
    bind_to(socket_, path);
    socket_.listen(k_backlog);
    utilities::get_logger().LogInfo() << "socket created: " << path;
}

pollfd Listening_socket::poll_entry(Clock::time_point now) const {
    return {pause_end(now) ? -1 : socket_.get_fd(), POLLIN, 0};
}

std::optional<Clock::time_point> Listening_socket::pause_end(Clock::time_point now) const {
    return paused_until_ > now ? std::optional(paused_until_) : std::nullopt;
}

std::optional<utilities::Socket> Listening_socket::accept() {
    int const connection = ::accept4(socket_.get_fd(), nullptr, nullptr, SOCK_CLOEXEC);
    if (connection >= 0) {
        return utilities::Socket(connection);
    }
    if (is_passing(errno)) {
        pause(errno);
    } else if (!is_nothing(errno)) {
        throw std::system_error(errno, std::generic_category(), "Socket::accept()");
    }
    return std::nullopt;
}

void Listening_socket::pause(int error) {
    paused_until_ = Clock::now() + k_pause;
    utilities::get_logger().LogError() << "no connection can be taken: " << base::system_error_text(error);
}

}  // namespace client_state_notifier
