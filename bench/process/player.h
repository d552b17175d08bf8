#ifndef BENCH_PROCESS_PLAYER_H
#define BENCH_PROCESS_PLAYER_H

#include "bench/process/child_process.h"
#include "bench/process/message_log.h"

#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench {

/// One player of the virtual vehicle as its user sees it:
///
///     Player hypervisor({"bench_hypervisor", directory});
///     hypervisor.command({{"do", "press"}, {"key", "n"}});
///     auto const word = hypervisor.await_event("write", {{"file", "set_status"}, {"text", "runnmcontrolled"}});
class Player {
 public:
    static constexpr std::chrono::milliseconds k_patience{10'000};

    /// Starts the program and waits until it says that it is ready. Throws `std::runtime_error` when it does not.
    explicit Player(std::vector<std::string> const& words, std::vector<std::string> const& environment = {});

    /// Sends a command and returns its answer; throws `std::runtime_error` when none comes.
    nlohmann::json command(nlohmann::json message);

    /// Waits for the event with these members, the oldest one from position `from` of the messages on. Throws
    /// `std::runtime_error` that shows what came instead.
    nlohmann::json await_event(std::string const& name, nlohmann::json const& members = nlohmann::json::object(),
                               std::size_t from = 0);

    /// A line as it is, for commands that are none.
    void send_line(std::string const& line) const;

    /// How many messages have arrived: a position for `await_event`.
    std::size_t position() { return log_.messages().size(); }

    Message_log& log() { return log_; }
    Child_process& process() { return process_; }

 private:
    Child_process process_;
    Message_log log_;
    std::uint64_t next_id_{1};
};

/// Whether the message has all of these members with these values.
bool has_members(nlohmann::json const& message, nlohmann::json const& members);

}  // namespace bench

#endif
