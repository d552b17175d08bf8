#include "client_state_notifier/poll_set.h"

#include "utilities/poll.h"

namespace client_state_notifier {

void Poll_set::fill(std::chrono::steady_clock::time_point now, Listening_socket const& listener,
                    Request_slot const& requests, Client_register const& clients, Newcomers const& newcomers) {
    if (!has_clients_) {
        entries_.resize(k_clients);
        clients.add_to(entries_);
        clients_ = entries_.size() - k_clients;
        has_clients_ = true;
    }
    entries_.resize(k_clients + clients_);
    entries_[k_listener] = listener.poll_entry(now);
    entries_[k_wake_up] = utilities::create_pollfd_helper(POLLIN, requests.wake_up_end());
    newcomers.add_to(entries_);
    entries_.push_back({requests.bell().descriptor(), POLLIN, 0});
}

bool Poll_set::wait(long timeout_ms) {
    return utilities::poll(entries_, timeout_ms, calls_);
}

std::vector<int> Poll_set::ready_clients() const {
    std::vector<int> ready;
    for (auto place = k_clients; place < k_clients + clients_; ++place) {
        if (entries_[place].revents != 0) {
            ready.push_back(entries_[place].fd);
        }
    }
    return ready;
}

}  // namespace client_state_notifier
