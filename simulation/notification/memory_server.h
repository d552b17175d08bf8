#ifndef SIMULATION_NOTIFICATION_MEMORY_SERVER_H
#define SIMULATION_NOTIFICATION_MEMORY_SERVER_H

#include "client_state_notifier/client_states_front.h"
#include "client_state_notifier/notification_server.h"
#include "simulation/notification/memory_sockets.h"
#include "utilities/frame_assembler.h"

#include <optional>
#include <string>

namespace simulation {

/// The notification server without a thread. Turns are due whenever the sockets have changed, and at its deadline; none
/// may be run from a callback, nor under a lock that a callback takes.
class Memory_server : public client_state_notifier::Client_states_front {
 public:
    Memory_server(std::string const& current_state, client_state_notifier::Status_callback status_callback,
                  Memory_sockets& sockets)
        : Client_states_front(current_state, sockets),
          sockets_(sockets),
          server_("in memory", std::move(status_callback), requests_, clients_, sockets) {}

    /// Turns, until one has found nothing ready.
    void serve() {
        do {
            server_.turn();
        } while (sockets_.was_ready());
    }

    std::optional<std::chrono::nanoseconds> next_deadline() const {
        auto const next = server_.next_deadline(sockets_.now());
        return next ? std::optional(next->time_since_epoch()) : std::nullopt;
    }

 private:
    Memory_sockets& sockets_;
    client_state_notifier::Notification_server server_;
};

/// A client's end of a connection.
class Client_end {
 public:
    struct Request {
        std::uint32_t number;
        std::string state;
    };

    /// Says who it is, and its state.
    Client_end(Memory_sockets& sockets, std::string const& name, std::string const& state);

    /// The next request that has come, if there is one.
    std::optional<Request> take_request();

    void answer(Request const& request, std::uint32_t status) const;

    /// The server has closed.
    bool has_ended() const { return has_ended_; }

    utilities::Socket const& socket() const { return socket_; }

 private:
    void receive();

    utilities::Socket socket_;
    utilities::Frame_assembler frames_;
    bool has_ended_{false};
};

}  // namespace simulation

#endif
