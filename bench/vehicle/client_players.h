#ifndef BENCH_VEHICLE_CLIENT_PLAYERS_H
#define BENCH_VEHICLE_CLIENT_PLAYERS_H

#include "bench/process/player.h"
#include "bench/vehicle/client_record.h"
#include "bench/vehicle/timeline.h"

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench::vehicle {

/// The clients that the state manager asks before a suspend and after it, a process each.
class Client_players {
 public:
    /// `program` is the player of one client. Throws `std::runtime_error`.
    Client_players(std::string program, std::vector<std::string> const& names);

    /// How long the state manager waits for their answers, from its configuration.
    void set_limits(nlohmann::json const& configuration) { limits_ = limits_in(configuration); }

    bool has(std::string const& name) const;

    /// Gives one of them a command as docs/bench.md describes it and returns its answer. One that has crashed is
    /// started again first. Throws `std::runtime_error` for a command that is refused.
    nlohmann::json tell(std::string const& name, nlohmann::json const& command);

    Child_process& process(std::string const& name) { return client(name).player->process(); }

    /// What has happened since the last call.
    Timeline take();

    std::vector<Client_status> statuses() const;

    /// To poll for what happens.
    std::vector<int> descriptors() const;

 private:
    struct Client {
        std::unique_ptr<Player> player;
        Client_record record;
        std::size_t seen{0};  ///< messages heard so far
    };

    Client& client(std::string const& name);
    void start(Client& client) const;
    void hear_news(Client& client, Timeline& events) const;
    void note_end(Client& client, Timeline& events) const;

    std::string program_;
    std::vector<Client> clients_;
    Answer_limits limits_;
};

}  // namespace bench::vehicle

#endif
