#include "base/bell.h"
#include "client_state_notifier/surroundings.h"

#include <cerrno>
#include <system_error>
#include <type_traits>

#include <sys/socket.h>

namespace client_state_notifier {

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

class Machine_bell final : public Wake_up_bell {
 public:
    int descriptor() const override { return bell_.descriptor(); }
    bool ring() const override { return bell_.ring(); }
    void clear() const override { bell_.clear(); }

 private:
    base::Bell bell_;
};

class Machine_surroundings final : public Surroundings {
 public:
    Clock::time_point now() override { return Clock::now(); }

    utilities::Socket_calls& calls() override { return utilities::system_socket_calls(); }

    Bound_socket listen(std::string const& path) override {
        Bound_socket bound{utilities::Socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0), nullptr};
        bound.file = std::make_unique<utilities::Deleter>(with_free_place(path), false);
        bind_to(bound.socket, path);
        bound.socket.listen(k_backlog);
        return bound;
    }

    int accept(utilities::Socket const& listener) override {
        return ::accept4(listener.get_fd(), nullptr, nullptr, SOCK_CLOEXEC);
    }

    std::pair<utilities::Socket, utilities::Socket> socket_pair() override { return utilities::socket_pair(); }

    std::unique_ptr<Wake_up_bell> bell() override { return std::make_unique<Machine_bell>(); }
};

}  // namespace

// The server's thread may still be at work when the process exits.
static_assert(std::is_trivially_destructible_v<Machine_surroundings>);

Surroundings& machine_surroundings() {
    static Machine_surroundings machine;
    return machine;
}

}  // namespace client_state_notifier
