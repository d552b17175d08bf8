#ifndef SIMULATION_CLIENTS_H
#define SIMULATION_CLIENTS_H

#include "client_state_notifier/client_states.h"
#include "simulation/stage.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace simulation {

/// What a client does when it is asked for a state.
struct Client_manner {
    enum class Answer { succeeds, fails, is_invalid, silent, crashes };

    Answer answer{Answer::succeeds};
    Time after{0};  ///< from the request to the answer, or to the crash
};

/// The clients of the machine, and a model of the server between them and the notifier: connections, who is asked, the
/// numbers of requests, deadlines, results. What the server logs, and sockets with all that can happen on them, it does
/// not have.
class Clients {
 public:
    explicit Clients(Stage& stage) : stage_(stage) {}

    /// What `create_client_states` gives to the notifier.
    std::unique_ptr<client_state_notifier::Client_states> serve(
        std::string const& current_state, client_state_notifier::Status_callback const& status_callback);

    /// A client comes with the state that it is in. Several may have one name.
    void connect(std::string const& name, Client_manner manner, std::string const& state = "kOn");

    // All clients with a name. One that no longer is silent answers what it has not answered.
    void disconnect(std::string const& name);
    void behave(std::string const& name, Client_manner manner);

    /// They report a state that nobody has asked for.
    void report(std::string const& name, std::string const& state);

    bool has(std::string const& name) const;

 private:
    friend class Modelled_server;

    struct Client {
        std::string name;
        std::string state;
        Client_manner manner;
        std::string known_state;  ///< what the server knows of it
        std::string requested{};
        unsigned number{0};  ///< of the last request that it was sent
        bool has_to_answer{false};
        bool is_asked{false};  ///< ever
    };
    struct Cycle {
        client_state_notifier::Completion_callback completed;
        client_state_notifier::Client_results results;
        std::set<std::uint64_t> open;        ///< those that may still answer
        std::set<std::uint64_t> unanswered;  ///< these, and those that have gone
        std::uint64_t number;
    };

    void request(std::string const& state, client_state_notifier::Client_predicate const& predicate,
                 client_state_notifier::Completion_callback const& completed, Time timeout);
    void begin(std::string const& state, client_state_notifier::Client_predicate const& predicate, Cycle cycle,
               Time deadline);
    void ask(std::uint64_t id, std::string const& state);
    void react(std::uint64_t id);
    void answer(std::uint64_t id);
    void go(std::uint64_t id, char const* how);
    void complete_if_all_answered();
    void time_out(std::uint64_t number);
    void record(std::string const& name, client_state_notifier::Component_client_return_type result);

    Stage& stage_;
    std::string current_state_;
    client_state_notifier::Status_callback status_callback_;
    bool is_serving_{false};
    std::map<std::uint64_t, Client> clients_;  ///< in the order of their connections
    std::uint64_t next_id_{0};
    std::uint64_t request_number_{0};
    std::optional<Cycle> cycle_;
};

}  // namespace simulation

#endif
