#ifndef SIMULATION_CLIENTS_H
#define SIMULATION_CLIENTS_H

#include "simulation/notification/memory_server.h"
#include "simulation/stage.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulation {

/// What a client does when it is asked for a state.
struct Client_manner {
    enum class Answer { succeeds, fails, is_invalid, silent, crashes, succeeds_twice };

    Answer answer{Answer::succeeds};
    Time after{0};  ///< from the request to the answer, or to the crash
};

/// The clients of the machine, and the notification server that they talk to: the real one, in memory and in turns. A
/// client that comes before the server does is let in when it starts.
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

    /// They report a state that nobody has asked for any more: as an answer to the request before the last one.
    void report(std::string const& name, std::string const& state);

    bool has(std::string const& name) const;

    /// From now on the notifier hears that a request is over when it is let, as a server's thread tells it when it
    /// comes to it.
    void hold_completions() { is_holding_ = true; }
    bool has_held_completions() const { return !held_.empty(); }
    void let_completions();

    /// When the server stops waiting for answers.
    std::optional<Time> deadline() const { return deadline_; }

 private:
    class Server;

    struct Client {
        std::string name;
        std::string state;
        Client_manner manner;
        std::optional<Client_end> end{};
        std::optional<Client_end::Request> request{};  ///< to be answered
        std::uint32_t last_number{~0U};                ///< of its last request,
        std::uint32_t number_before{~0U};              ///< and of the one before
        std::uint64_t requests{0};
    };

    std::vector<std::uint64_t> all(std::string const& name) const;
    void arm();
    void turn();
    void hear(std::uint64_t id);
    void react(std::uint64_t id);
    void answer(std::uint64_t id);
    void go(std::uint64_t id, char const* how);
    void note_silent(client_state_notifier::Client_results const& results);

    Stage& stage_;
    Memory_sockets sockets_{[this] { return stage_.now(); }};
    Server* server_{nullptr};  ///< the notifier's
    bool is_due_{false};       ///< a turn
    std::optional<Time> deadline_;
    bool is_holding_{false};
    std::vector<std::function<void()>> held_;  ///< completions
    std::map<std::uint64_t, Client> clients_;  ///< in the order in which they came
    std::uint64_t next_id_{0};
};

}  // namespace simulation

#endif
