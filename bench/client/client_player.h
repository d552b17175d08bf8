#ifndef BENCH_CLIENT_CLIENT_PLAYER_H
#define BENCH_CLIENT_CLIENT_PLAYER_H

#include "bench/client/behaviour.h"
#include "bench/json_lines/control_loop.h"
#include "component_client/client.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace bench::client {

/// What the client is started with.
struct Client_options {
    std::string name;
    std::string state{"kOn"};   ///< that it announces first
    std::string socket_path{};  ///< empty: where the machine has it
};

/// Takes part as a client of the state manager, tells of it as events ("connected", "disconnected", "request",
/// "answer", "crash", "trouble"), and behaves as it is told. On the loop's thread.
class Client_player {
 public:
    /// The loop must outlive this.
    Client_player(Client_options const& options, Control_loop& loop);

    /// From now on, and for what it owes.
    void behave(Behaviour const& behaviour);

    /// Name, state, manner, whether it is connected, and the state that it owes an answer for (or null).
    nlohmann::json describe() const;

 private:
    component_client::Options connection(Client_options const& options);
    void accept(std::string const& state, component_client::Answer answer);
    void act_on_what_is_owed();
    void answer(component_client::Status status);

    std::string name_;
    Control_loop& loop_;
    Behaviour behaviour_;
    std::uint64_t turn_{0};  ///< counts requests and changes of behaviour: a delay belongs to one of them
    component_client::Client client_;
    std::optional<component_client::Answer> owed_;
};

}  // namespace bench::client

#endif
