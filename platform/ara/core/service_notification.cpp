#include "ara/core/service_notification.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace ara::core {

namespace {

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::system_category(), "notification of the service manager");
}

class Datagram_socket {
 public:
    Datagram_socket() : descriptor_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        if (descriptor_ < 0) {
            fail(errno);
        }
    }
    ~Datagram_socket() { ::close(descriptor_); }
    Datagram_socket(Datagram_socket const&) = delete;
    Datagram_socket& operator=(Datagram_socket const&) = delete;

    void connect_to(std::string_view name) const {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (name.empty() || name.size() >= sizeof address.sun_path) {
            fail(EINVAL);
        }
        std::memcpy(address.sun_path, name.data(), name.size());
        bool const is_abstract = name.front() == '@';
        if (is_abstract) {
            address.sun_path[0] = '\0';
        }
        auto const size = offsetof(sockaddr_un, sun_path) + name.size() + (is_abstract ? 0 : 1);
        if (::connect(descriptor_, reinterpret_cast<sockaddr const*>(&address), static_cast<socklen_t>(size)) != 0) {
            fail(errno);
        }
    }

    void send(std::string_view line) const {
        while (::send(descriptor_, line.data(), line.size(), MSG_NOSIGNAL) < 0) {
            if (errno != EAGAIN && errno != EINTR) {
                fail(errno);
            }
            wait_for_room();
        }
    }

 private:
    void wait_for_room() const {
        pollfd room{descriptor_, POLLOUT, 0};
        auto const ready = ::poll(&room, 1, static_cast<int>(k_notification_time_limit.count()));
        if (ready == 0) {
            fail(ETIMEDOUT);
        }
        if (ready < 0 && errno != EINTR) {
            fail(errno);
        }
    }

    int descriptor_;
};

}  // namespace

void notify_service_manager(std::string_view line) {
    auto const* const name = std::getenv("NOTIFY_SOCKET");
    if (name == nullptr) {
        return;
    }
    Datagram_socket const socket;
    socket.connect_to(name);
    socket.send(line);
}

}  // namespace ara::core
