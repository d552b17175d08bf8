#ifndef CLIENT_STATE_NOTIFIER_POLL_SET_H
#define CLIENT_STATE_NOTIFIER_POLL_SET_H

#include "client_state_notifier/client_register.h"
#include "client_state_notifier/listening_socket.h"
#include "client_state_notifier/newcomers.h"
#include "client_state_notifier/request_slot.h"

#include <chrono>
#include <cstddef>
#include <vector>

#include <poll.h>

namespace client_state_notifier {

/// What the server waits for: the listener, the wake-up channel, the clients, the newcomers and the bell, in this
/// order. In each turn: fill, wait, and ask what is ready.
class Poll_set {
 public:
    explicit Poll_set(utilities::Socket_calls& calls) : calls_(calls) {}

    /// A client has come or gone. Their entries stay from turn to turn until then.
    void forget_clients() { has_clients_ = false; }

    /// As of now.
    void fill(std::chrono::steady_clock::time_point now, Listening_socket const& listener, Request_slot const& requests,
              Client_register const& clients, Newcomers const& newcomers);

    /// False when nothing was ready before the time was over, see utilities::poll.
    bool wait(long timeout_ms);

    bool is_listener_ready() const { return entries_[k_listener].revents != 0; }
    bool is_wake_up_ready() const { return entries_[k_wake_up].revents != 0; }

    bool is_bell_ready() const { return entries_.back().revents != 0; }

    /// The connections of the clients that are ready.
    std::vector<int> ready_clients() const;

    pollfd const* newcomers() const { return entries_.data() + k_clients + clients_; }
    std::size_t newcomer_count() const { return entries_.size() - k_clients - clients_ - 1; }

 private:
    static constexpr std::size_t k_listener = 0;  // places
    static constexpr std::size_t k_wake_up = 1;
    static constexpr std::size_t k_clients = 2;

    utilities::Socket_calls& calls_;
    std::vector<pollfd> entries_;
    std::size_t clients_{0};  ///< how many of the entries are theirs
    bool has_clients_{false};
};

}  // namespace client_state_notifier

#endif
