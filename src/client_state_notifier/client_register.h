#ifndef CLIENT_STATE_NOTIFIER_CLIENT_REGISTER_H
#define CLIENT_STATE_NOTIFIER_CLIENT_REGISTER_H

#include "base/mutex.h"
#include "client_state_notifier/client_state.h"
#include "client_state_notifier/client_states.h"
#include "utilities/type_length_value.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>

namespace client_state_notifier {

/// What a client has answered.
struct Client_answer {
    bool is_in_turn;  ///< it has the number of the last request sent to the client; never before one was sent
    std::string state;
    Component_client_return_type status;
};

/// The connected clients that have introduced themselves, each with its name, the state that it reported last, the
/// number of the last request that it was sent, and what it has sent so far. A connection is named by its descriptor.
///
/// The server's thread adds a client when it has introduced itself, sends it the current state or the next request,
/// receives from it and takes its answers, and removes it when its connection ends; so what it knows of a client stays
/// true until it changes it. Any thread may ask. Nothing here waits for a client.
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

    /// The state of the last request sent to the client; empty before the first one.
    std::string requested_state_of(int connection) const;

    /// Connection and name of each client that the predicate selects, in the order of the connections. The predicate
    /// is called without the lock.
    std::vector<std::pair<int, std::string>> select(Client_predicate const& predicate) const;

    /// Adds an entry that waits for input for each client, in the order of the connections.
    void add_to(std::vector<pollfd>& poll_set) const;

    /// Sends the client's request number and a state. Throws std::system_error when it does not go out at once.
    void send_request(int connection, std::string const& state);

    /// The same for many clients, after counting the request number of each up. The clients that it did not go out to
    /// at once, and why.
    std::map<int, std::string> send_next_request(std::vector<int> const& connections, std::string const& state);

    /// Receives once from the client, see Inbox.
    void receive(int connection);

    /// The next whole answer of the client as of now, if there is one; one in turn is taken over as the client's state.
    /// Throws what Inbox::take does, and std::out_of_range for an answer that is too short.
    std::optional<Client_answer> take_answer(int connection, Inbox::Clock::time_point now);

 private:
    Client_map::value_type& at(int connection) REQUIRES(mutex_) {
        return *by_connection_[static_cast<std::size_t>(connection)];
    }
    Client_map::value_type const& at(int connection) const REQUIRES(mutex_) {
        return *by_connection_[static_cast<std::size_t>(connection)];
    }

    mutable base::Mutex mutex_;
    std::string current_state_ GUARDED_BY(mutex_);
    Client_map clients_ GUARDED_BY(mutex_);
    std::vector<Client_map::value_type*> by_connection_ GUARDED_BY(mutex_);  ///< the same clients; old places are stale
    utilities::Type_length_values message_ GUARDED_BY(mutex_);               ///< the last one taken, for its memory
};

}  // namespace client_state_notifier

#endif
