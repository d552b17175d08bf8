#ifndef BENCH_VEHICLE_CLIENT_RECORD_H
#define BENCH_VEHICLE_CLIENT_RECORD_H

#include "bench/vehicle/client_status.h"
#include "bench/vehicle/timeline.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace bench::vehicle {

/// How long the state manager waits for the answers of its clients.
struct Answer_limits {
    std::int64_t application_s{60};
    std::int64_t diagnosis_s{60};
};

/// What a configuration of the state manager says; the usual times where it says nothing.
Answer_limits limits_in(nlohmann::json const& configuration);

/// Follows one client by what its player tells.
class Client_record {
 public:
    explicit Client_record(std::string const& name) { status_.name = name; }

    /// A message of the player's, whose times are this machine's; nothing for what is the player's own business.
    std::optional<Event> hear(nlohmann::json const& message, Answer_limits const& limits);

    /// The player has ended; a new one begins.
    Event note_end(std::int64_t time);
    void begin();

    void set_manner(std::string const& manner) { status_.manner = manner; }
    Client_status const& status() const { return status_; }

 private:
    std::int64_t deadline_of(nlohmann::json const& request, Answer_limits const& limits) const;

    Client_status status_;
};

}  // namespace bench::vehicle

#endif
