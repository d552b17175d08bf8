#ifndef CLIENT_STATE_NOTIFIER_CLIENT_CONNECTIONS_H
#define CLIENT_STATE_NOTIFIER_CLIENT_CONNECTIONS_H

#include "client_state_notifier/client_register.h"
#include "client_state_notifier/client_states.h"
#include "client_state_notifier/listening_socket.h"
#include "client_state_notifier/newcomers.h"
#include "client_state_notifier/poll_set.h"
#include "client_state_notifier/request_slot.h"
#include "client_state_notifier/surroundings.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace client_state_notifier {

/// The server's connections from their arrival to their end:
///
///     listener --accept--> newcomers --first message--> the register's clients --failure, end--> leaving --> closed
///
/// A client that breaks the protocol, closes, or does not read leaves with the turn of the loop in which that was seen,
/// with a line in the log; until then it is still a client. One thread, which waits in `wait` and nowhere else.
class Client_connections {
 public:
    using Clock = Surroundings::Clock;

    /// Connections at the same time; one more is closed at once.
    static constexpr std::size_t k_most_connections = 1'000;

    /// An answer to the last request that the client was sent.
    struct Answer_in_turn {
        int connection;
        Component_client_return_type status;
    };

    /// Listens at the path. The register and the surroundings must outlive the connections.
    Client_connections(std::string const& path, Status_callback status_callback, Client_register& clients,
                       Surroundings& surroundings);

    /// When there is something to do without an event, as of now; nothing when there is no such time.
    std::optional<Clock::time_point> next_deadline(Clock::time_point now) const;

    /// Waits for whatever may be heard here or from the slot, for a time in milliseconds, without limit when that is
    /// negative; then takes the connection that has arrived and hears those who have not said yet who they are.
    void wait(Clock::time_point now, long timeout_ms, Request_slot const& requests);

    // What the last wait has seen of the slot.
    bool is_wake_up_ready() const { return poll_set_.is_wake_up_ready(); }
    bool is_bell_ready() const { return poll_set_.is_bell_ready(); }

    /// Hears the clients who have spoken, and hands the answers in turn out, in the order of the connections. Other
    /// answers go to the status callback.
    std::vector<Answer_in_turn> hear_clients();

    /// These connections leave as well, and why.
    void dismiss(std::map<int, std::string> failures) { leaving_.merge(failures); }

    /// Closes the connections that leave, and hands them out.
    std::vector<int> close_leaving();

 private:
    void process_new_client();
    void process_newcomers();
    void process_introduction(Introduced_client client);
    void send_current_state(int connection, std::string const& state);
    void process_readable_client(int connection, std::vector<Answer_in_turn>& answers);
    void process_messages(int connection, std::vector<Answer_in_turn>& answers);

    Surroundings& surroundings_;
    Status_callback const status_callback_;
    Client_register& clients_;
    Listening_socket listener_;
    Newcomers newcomers_;
    Poll_set poll_set_;
    std::map<int, std::string> leaving_;  ///< connections that end with this turn of the loop, and why
};

}  // namespace client_state_notifier

#endif
