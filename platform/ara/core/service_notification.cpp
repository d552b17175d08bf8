#include "ara/core/service_notification.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace ara::core {

namespace {

using std::chrono::steady_clock;

std::atomic<bool> ready_is_owed{false};
std::atomic<bool> is_stopping{false};

std::error_code last_error() {
    return {errno, std::system_category()};
}

/// The service manager's socket.
struct Address {
    sockaddr_un name{};
    socklen_t size{0};

    sockaddr const* generic() const { return reinterpret_cast<sockaddr const*>(&name); }
};

/// Where this name says that it is; nothing for a name that is none.
std::optional<Address> address_of(std::string_view name) {
    Address address;
    address.name.sun_family = AF_UNIX;
    if (name.empty() || name.size() >= sizeof address.name.sun_path) {
        return std::nullopt;
    }
    std::memcpy(address.name.sun_path, name.data(), name.size());
    bool const is_abstract = name.front() == '@';
    if (is_abstract) {
        address.name.sun_path[0] = '\0';
    }
    address.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (is_abstract ? 0 : 1));
    return address;
}

/// Sends with this function, to where NOTIFY_SOCKET says now that the service manager is; without it nobody is told.
template <typename Function>
std::error_code if_told_where(Function send_to) {
    auto const* const name = std::getenv("NOTIFY_SOCKET");
    if (name == nullptr) {
        return {};
    }
    auto const address = address_of(name);
    return address ? send_to(*address) : std::error_code(EINVAL, std::system_category());
}

int make_socket() {
    return ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

/// A notification that may wait has a socket of its own, which is connected: only such a one can be polled for room.
class Datagram_socket {
 public:
    Datagram_socket() : descriptor_(make_socket()) {}
    ~Datagram_socket() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    Datagram_socket(Datagram_socket const&) = delete;
    Datagram_socket& operator=(Datagram_socket const&) = delete;

    bool is_open() const { return descriptor_ >= 0; }

    std::error_code connect_to(Address const& address) const {
        int result = 0;
        do {
            result = ::connect(descriptor_, address.generic(), address.size);
        } while (result != 0 && errno == EINTR);
        return result == 0 ? std::error_code() : last_error();
    }

    std::error_code send(std::string_view line, steady_clock::time_point deadline) const {
        while (::send(descriptor_, line.data(), line.size(), MSG_NOSIGNAL) < 0) {
            if (errno != EAGAIN && errno != EINTR) {
                return last_error();
            }
            auto const left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
            if (left.count() <= 0) {
                return {EAGAIN, std::system_category()};
            }
            pollfd room{descriptor_, POLLOUT, 0};
            ::poll(&room, 1, static_cast<int>(left.count()));
        }
        return {};
    }

 private:
    int descriptor_;
};

std::error_code send(std::string_view line, std::chrono::milliseconds limit) {
    return if_told_where([&](Address const& address) {
        Datagram_socket const socket;
        if (!socket.is_open()) {
            return last_error();
        }
        auto const error = socket.connect_to(address);
        return error ? error : socket.send(line, steady_clock::now() + limit);
    });
}

std::error_code send_at_once(std::string_view line) {
    return send(line, std::chrono::milliseconds(0));
}

// The number in an environment variable; nothing when there is none, or none alone.
std::optional<std::int64_t> number_in(char const* variable) {
    auto const* const text = std::getenv(variable);
    if (text == nullptr) {
        return std::nullopt;
    }
    auto const* const end = text + std::strlen(text);
    std::int64_t number = 0;
    auto const parsed = std::from_chars(text, end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

bool is_meant_for_another_process() {
    return std::getenv("WATCHDOG_PID") != nullptr && number_in("WATCHDOG_PID") != ::getpid();
}

}  // namespace

void notify_service_manager(std::string_view line) {
    if (auto const error = send(line, k_notification_time_limit)) {
        throw not_notified(error);
    }
}

void report_ready() {
    is_stopping = false;
    auto const error = send_at_once("READY=1");
    ready_is_owed = error && may_pass(error);
    if (error && !ready_is_owed) {
        throw not_notified(error);
    }
}

void report_stopping() {
    notify_service_manager("STOPPING=1");
    is_stopping = true;
}

std::error_code Beats::send() {
    if (ready_is_owed) {
        if (auto const error = send_at_once("READY=1")) {
            return may_pass(error) ? std::error_code() : error;
        }
        ready_is_owed = false;
    }
    return if_told_where([this](Address const& address) {
        if (!socket_ || !socket_->is_open()) {
            socket_.emplace(make_socket());
        }
        constexpr std::string_view k_line = "WATCHDOG=1";
        if (socket_->is_open() && ::sendto(socket_->number(), k_line.data(), k_line.size(), MSG_NOSIGNAL,
                                           address.generic(), address.size) >= 0) {
            return std::error_code();
        }
        return errno == EINTR ? std::error_code(EAGAIN, std::system_category()) : last_error();
    });
}

bool may_pass(std::error_code const& error) {
    switch (error.value()) {
        case EAGAIN:
        case ENOBUFS:
        case ENOMEM:
        case EMFILE:
        case ENFILE:
            return true;
        default:
            return false;
    }
}

std::system_error not_notified(std::error_code const& error) {
    return {error, "notification of the service manager"};
}

std::optional<std::chrono::microseconds> watchdog_time() {
    auto const microseconds = number_in("WATCHDOG_USEC");
    if (is_stopping || is_meant_for_another_process() || !microseconds || *microseconds <= 0) {
        return std::nullopt;
    }
    return std::chrono::microseconds(*microseconds);
}

}  // namespace ara::core
