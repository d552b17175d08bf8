#ifndef SIMULATION_NOTIFICATION_MEMORY_SOCKETS_H
#define SIMULATION_NOTIFICATION_MEMORY_SOCKETS_H

#include "client_state_notifier/surroundings.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>

namespace simulation {

/// The notification server's surroundings in memory, for one thread: stream sockets as the kernel's Unix sockets are
/// seen from the server, bells, and a clock that is told. A wait is over at once: whoever runs the server knows when a
/// turn is due. A descriptor is the lowest number that is free, as the system's are.
class Memory_sockets final : public client_state_notifier::Surroundings, private utilities::Socket_calls {
 public:
    /// Bytes that one end keeps until they are read.
    static constexpr std::size_t k_room = 65'536;

    explicit Memory_sockets(std::function<std::chrono::nanoseconds()> time) : time_(std::move(time)) {}

    /// The client's end of a new connection. Throws std::system_error when nobody listens.
    utilities::Socket connect();

    /// Whether something was ready in the last poll.
    bool was_ready() const { return was_ready_; }

    /// Told of each byte, connection, end and ring.
    void on_change(std::function<void()> changed) { changed_ = std::move(changed); }

    Clock::time_point now() override { return Clock::time_point(time_()); }
    utilities::Socket_calls& calls() override { return *this; }
    client_state_notifier::Bound_socket listen(std::string const& path) override;
    int accept(utilities::Socket const& listener) override;
    std::pair<utilities::Socket, utilities::Socket> socket_pair() override;
    std::unique_ptr<client_state_notifier::Wake_up_bell> bell() override;

 private:
    static constexpr int k_nobody = -1;

    struct Open {
        std::string bytes;   ///< not read yet
        int peer{k_nobody};  ///< of a stream; nobody when it has closed
        int error{0};        ///< told once
        bool is_stream{false};
        std::deque<int> arrived{};  ///< of a listener
    };

    class Bell;

    ssize_t send(int socket, void const* bytes, std::size_t length, int flags) override;
    ssize_t recv(int socket, void* bytes, std::size_t length, int flags) override;
    int close(int socket) override;
    int poll(pollfd* entries, std::size_t count, timespec const* timeout) override;

    int open();
    std::pair<int, int> open_pair();
    void leave(Open const& closed);
    short events_of(int socket) const;
    void change() const;

    std::function<std::chrono::nanoseconds()> const time_;
    std::function<void()> changed_;
    std::map<int, Open> open_;
    int listener_{k_nobody};
    bool was_ready_{false};
};

}  // namespace simulation

#endif
