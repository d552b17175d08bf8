// The server's thread alone, in each turn of its loop: `next_deadline` and `add_to` before the poll; after it `add`
// for a connection that was accepted, then `hear` for all.

#include "client_state_notifier/newcomers.h"

#include "utilities/logger.h"

#include <exception>
#include <stdexcept>

namespace client_state_notifier {

using Clock = Surroundings::Clock;

void Newcomers::add(utilities::Socket socket) {
    newcomers_.push_back({std::move(socket), {}, surroundings_.now() + k_time_to_introduce});
}

std::optional<Clock::time_point> Newcomers::next_deadline() const {
    return newcomers_.empty() ? std::nullopt : std::optional(newcomers_.front().deadline);
}

void Newcomers::add_to(std::vector<pollfd>& poll_set) const {
    for (auto const& newcomer : newcomers_) {
        poll_set.push_back({newcomer.socket.get_fd(), POLLIN, 0});
    }
}

std::vector<Introduced_client> Newcomers::hear(pollfd const* entries, std::size_t count) {
    std::vector<Introduced_client> introduced;
    std::vector<Newcomer> remaining;
    for (auto& newcomer : newcomers_) {
        bool const is_ready = count == 0 || entries->revents != 0;
        if (count > 0) {
            ++entries;
            --count;
        }
        try {
            if (auto client = is_ready ? hear(newcomer) : std::nullopt) {
                introduced.push_back(std::move(*client));
                continue;
            }
            check_time(newcomer);
            remaining.push_back(std::move(newcomer));
        } catch (std::exception const& error) {
            utilities::get_logger().LogWarn() << "connection dropped before it introduced itself: " << error.what();
        }
    }
    newcomers_ = std::move(remaining);
    return introduced;
}

std::optional<Introduced_client> Newcomers::hear(Newcomer& newcomer) const {
    newcomer.inbox.receive(newcomer.socket);
    auto const introduction = newcomer.inbox.take(surroundings_.now());
    if (!introduction) {
        return std::nullopt;
    }
    auto name = introduction->at(1).get_string();
    auto state = introduction->at(2).get_string();
    return Introduced_client{std::move(newcomer.socket), std::move(newcomer.inbox), std::move(name), std::move(state)};
}

void Newcomers::check_time(Newcomer const& newcomer) const {
    if (surroundings_.now() >= newcomer.deadline) {
        throw std::runtime_error("no complete message in time");
    }
}

}  // namespace client_state_notifier
