#include "bench/service_manager/notify_socket.h"

#include "bench/json_lines/clock.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace bench::service_manager {

namespace {

constexpr std::size_t k_longest_datagram = 4096;  // the real service manager takes no more either

[[noreturn]] void fail(std::string const& what, int error) {
    throw std::system_error(error, std::generic_category(), what);
}

sockaddr_un address_of(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        fail(path, ENAMETOOLONG);
    }
    path.copy(address.sun_path, path.size());
    return address;
}

int bound_socket(std::string const& path) {
    sockaddr_un const address = address_of(path);
    int const descriptor = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        fail("socket", errno);
    }
    ::unlink(path.c_str());
    int const on = 1;
    if (::setsockopt(descriptor, SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0 ||
        ::bind(descriptor, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        int const error = errno;
        ::close(descriptor);
        fail(path, error);
    }
    return descriptor;
}

int sender_of(msghdr& message) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr; part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level == SOL_SOCKET && part->cmsg_type == SCM_CREDENTIALS) {
            ucred credentials{};
            std::memcpy(&credentials, CMSG_DATA(part), sizeof credentials);
            return credentials.pid;
        }
    }
    return 0;
}

}  // namespace

Notify_socket::Notify_socket(std::string path) : path_(std::move(path)), descriptor_(bound_socket(path_)) {}

Notify_socket::~Notify_socket() {
    ::close(descriptor_);
    ::unlink(path_.c_str());
}

std::optional<Notification> Notify_socket::receive() const {
    std::array<char, k_longest_datagram> text{};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
    iovec piece{text.data(), text.size()};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t const size = ::recvmsg(descriptor_, &message, MSG_CMSG_CLOEXEC);
    if (size < 0) {
        return std::nullopt;
    }
    std::string const datagram(text.data(), static_cast<std::size_t>(size));
    return Notification{monotonic_ns(), sender_of(message), parse_assignments(datagram)};
}

}  // namespace bench::service_manager
