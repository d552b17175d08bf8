#ifndef BENCH_CONSOLE_MACHINE_VIEW_H
#define BENCH_CONSOLE_MACHINE_VIEW_H

#include "bench/vehicle/client_status.h"
#include "bench/vehicle/timeline.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace bench::console {

/// What the screen shows of a machine: taken from its events, bounded in size however long it runs.
class Machine_view {
 public:
    /// Of each level: the many details of a long run leave the few lines that are no details.
    static constexpr std::size_t k_log_lines = 500;
    static constexpr std::size_t k_recent = 5;

    void hear(vehicle::Event const& event);

    /// Why the last key did nothing; empty when it did something.
    void show_trouble(std::string trouble) { trouble_ = std::move(trouble); }
    std::string const& trouble() const { return trouble_; }

    /// The clients as they are at the time `now` (nanoseconds of CLOCK_MONOTONIC).
    void show_clients(std::vector<vehicle::Client_status> clients, std::int64_t now);

    /// The next client is the one that keys are for.
    void select_next_client();

    std::string const& state_word() const { return state_word_; }        ///< empty before the first
    std::string const& machine_state() const { return machine_state_; }  ///< last one asked for
    std::deque<std::string> const& keys() const { return keys_; }        ///< newest last
    std::deque<std::string> const& words() const { return words_; }
    std::deque<vehicle::Event> const& log() const { return log_; }
    std::size_t beats() const { return beats_; }
    std::optional<std::string> const& exit_status() const { return exit_status_; }  ///< once the daemon has ended

    std::string const& bus() const { return bus_; }  ///< state of the machine's node

    /// The last events; without text before the first.
    vehicle::Event const& network_state() const { return network_state_; }
    vehicle::Event const& user_data() const { return user_data_; }

    std::string const& ecu_state() const { return ecu_state_; }  ///< as the daemon tells it

    /// Whether an application has asked for "ecu_alive", "com_alive" or "cwu" and not given it back.
    bool holds(std::string const& application, std::string const& what) const;

    std::vector<vehicle::Client_status> const& clients() const { return clients_; }
    std::size_t selected_client() const { return selected_client_; }  ///< its index
    std::int64_t now() const { return now_; }

    /// The daemon is started again.
    void begin_life();

 private:
    void hear_log(vehicle::Event const& event);
    void hear_application(vehicle::Act const& act);

    std::string trouble_;
    std::string state_word_;
    std::string machine_state_;
    std::deque<std::string> keys_;
    std::deque<std::string> words_;
    std::deque<vehicle::Event> log_;
    std::vector<vehicle::Client_status> clients_;
    std::size_t selected_client_{0};
    std::int64_t now_{0};
    std::size_t beats_{0};
    std::optional<std::string> exit_status_;
    std::string bus_;
    vehicle::Event network_state_{0, vehicle::Kind::network_state, ""};
    vehicle::Event user_data_{0, vehicle::Kind::user_data, ""};
    std::string ecu_state_;
    std::set<std::pair<std::string, std::string>> held_;  ///< application and what
};

}  // namespace bench::console

#endif
