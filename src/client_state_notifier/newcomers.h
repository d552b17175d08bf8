#ifndef CLIENT_STATE_NOTIFIER_NEWCOMERS_H
#define CLIENT_STATE_NOTIFIER_NEWCOMERS_H

#include "client_state_notifier/inbox.h"
#include "client_state_notifier/surroundings.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <poll.h>

namespace client_state_notifier {

/// A connection whose first message has arrived.
struct Introduced_client {
    utilities::Socket socket;
    Inbox inbox;  ///< with what arrived behind the first message
    std::string name;
    std::string state;
};

/// Connections that have not said who they are yet. One that breaks the protocol, closes or takes too long is closed,
/// with a line in the log.
class Newcomers {
 public:
    /// How long a connection may take for its first message.
    static constexpr std::chrono::seconds k_time_to_introduce{5};

    /// The surroundings must outlive the object.
    explicit Newcomers(Surroundings& surroundings = machine_surroundings()) : surroundings_(surroundings) {}

    void add(utilities::Socket socket);
    std::size_t size() const { return newcomers_.size(); }

    /// When the next of them will have taken too long.
    std::optional<std::chrono::steady_clock::time_point> next_deadline() const;

    /// Adds an entry that waits for input for each of them.
    void add_to(std::vector<pollfd>& poll_set) const;

    /// Reads what has arrived; those that have introduced themselves are handed out. `entries` are those of `add_to`
    /// after a poll; who has come since then is read anyway.
    std::vector<Introduced_client> hear(pollfd const* entries, std::size_t count);

 private:
    struct Newcomer {
        utilities::Socket socket;
        Inbox inbox;
        std::chrono::steady_clock::time_point deadline;
    };

    std::optional<Introduced_client> hear(Newcomer& newcomer) const;
    void check_time(Newcomer const& newcomer) const;

    Surroundings& surroundings_;
    std::vector<Newcomer> newcomers_;  ///< in the order of their arrival
};

}  // namespace client_state_notifier

#endif
