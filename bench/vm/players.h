#ifndef BENCH_VM_PLAYERS_H
#define BENCH_VM_PLAYERS_H

#include "bench/vehicle/client_record.h"
#include "bench/vehicle/timeline.h"
#include "bench/vm/journal.h"

#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace bench::vm {

/// The machine's nodes on the network, its applications and its clients: each is a unit of its service manager, takes
/// its commands from a FIFO and tells in the journal what happens. They have the names that all machines give them:
/// "node", "other node", "application 1"; clients have their own.
class Players {
 public:
    /// `configuration` is the state manager's: it names the applications and says how long clients are waited for.
    Players(nlohmann::json const& configuration, std::vector<std::string> const& clients);

    std::vector<std::string> const& applications() const { return applications_; }
    std::vector<vehicle::Client_status> clients() const;

    /// What a shell in the machine does to give one of them a command: it is started when it does not run. Its answer
    /// will have the number `id`.
    static std::string line_for(std::string const& name, nlohmann::json command, unsigned id);

    /// Its answer, once that has come.
    std::optional<nlohmann::json> take_answer(unsigned id);

    /// What follows from a command and the answer to it.
    void note(std::string const& name, nlohmann::json const& command);

    /// What an entry of the journal means; times are put through `to_host_time`.
    vehicle::Timeline hear(Entry const& entry, std::function<std::int64_t(std::int64_t)> const& to_host_time);

    /// The machine is off; whoever was there begins anew with it.
    void begin();

 private:
    vehicle::Timeline hear_message(std::string const& name, nlohmann::json const& message);
    vehicle::Client_record* client(std::string const& name);

    std::vector<std::string> applications_;
    std::vector<vehicle::Client_record> clients_{};
    vehicle::Answer_limits limits_;
    std::map<unsigned, nlohmann::json> answers_{};
};

}  // namespace bench::vm

#endif
