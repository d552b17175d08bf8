#ifndef CLIENT_STATE_NOTIFIER_CLIENT_REGISTER_H
#define CLIENT_STATE_NOTIFIER_CLIENT_REGISTER_H

#include "base/mutex.h"
#include "client_state_notifier/client_state.h"
#include "client_state_notifier/client_states.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>

namespace client_state_notifier {

/// The connected clients that have introduced themselves. Any thread may ask; only the server's thread adds, removes,
/// sends and receives, and so what it knows of a client stays true until it changes it. A connection is named by its
/// descriptor. Nothing here waits for a client.
class Client_register {
 public:
    explicit Client_register(std::string current_state) : current_state_(std::move(current_state)) {}

    /// Name and last known state of each client.
    std::vector<std::pair<std::string, std::string>> list() const;

    std::string current_state() const;
    void set_current_state(std::string const& state);

    bool has(std::string const& name) const;
    std::size_t size() const;
    void add(utilities::Socket socket, std::string const& name, Inbox inbox);

    /// The name of the client that went.
    std::string remove(int connection);
    void clear();

    std::string name_of(int connection) const;

    /// Connection and name of each client that the predicate selects, in the order of the connections. The predicate
    /// is called without the lock.
    std::vector<std::pair<int, std::string>> select(Client_predicate const& predicate) const;

    /// Adds an entry that waits for input for each client, in the order of the connections.
    void add_to(std::vector<pollfd>& poll_set) const;

    /// Sends the client's request number and a state. Throws std::system_error when it does not go out at once.
    void send_request(int connection, std::string const& state);

    /// The same, after counting the client's request number up.
    void send_next_request(int connection, std::string const& state);

    /// Receives once from the client, see Inbox.
    void receive(int connection);
    std::optional<utilities::Type_length_values> take_message(int connection);

    /// Takes over a state that the client reached. False, and nothing else, when the number is not that of the last
    /// request sent to it.
    bool update(int connection, std::uint32_t request_number, std::string const& state);

 private:
    mutable base::Mutex mutex_;
    std::string current_state_ GUARDED_BY(mutex_);
    Client_map clients_ GUARDED_BY(mutex_);
};

}  // namespace client_state_notifier

#endif
