#ifndef TESTS_SIMULATION_LIVES_HELD_RULES_H
#define TESTS_SIMULATION_LIVES_HELD_RULES_H

#include "bench/rules/rules.h"
#include "coverage.h"
#include "held_clients.h"
#include "simulation/life.h"
#include "terms.h"

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lives {

/// The rules of the machine as invariants over one life: told each entry of its timeline with its log, and each wait of
/// the driver.
class Held_rules {
 public:
    Held_rules(Terms terms, Coverage& coverage)
        : terms_(std::move(terms)),
          coverage_(coverage),
          clients_(terms_, [this](std::string const& what) { find(what); }) {}

    Held_rules(Held_rules const&) = delete;  // its clients tell it what they find
    Held_rules& operator=(Held_rules const&) = delete;
    ~Held_rules() = default;

    void take(simulation::Entry const& entry);

    /// The driver is about to wait: a cycle is over.
    void wait(simulation::Life& life);

    /// What was broken first, with its time; "" when all is well.
    std::string const& finding() const { return finding_; }

    /// Of the driver.
    std::uint64_t steps() const { return steps_; }

 private:
    using Time = simulation::Time;
    using State = bench::rules::State;
    using Command = bench::rules::Command;
    class Situation;

    struct Held {
        bool ecu{false};
        bool wake_up{false};
        std::uint32_t bits{0};
        unsigned long number{0};  ///< of the one AC bit, from 1; 0 for none
    };

    void find(std::string const& what);

    void read_record();
    void decide(std::optional<State> entered);
    void enter(State state);
    void take_word(simulation::Entry const& entry);
    void take_machine_state(simulation::Entry const& entry);
    void owe_power_off(std::deque<std::string> lines);
    void take_power_off(std::string const& line);
    void take_application(std::string const& who, std::string const& what);
    void take_request(simulation::Entry const& entry);
    void take_neighbour(simulation::Entry const& entry);
    void take_log(std::string const& text);

    void check_way_taken();
    void check_network(simulation::Life& life);
    void check_user_data(simulation::Life& life);
    std::uint64_t held_bits() const;
    simulation::Bits user_data() const;
    bool keeps_ecu() const;
    bool keeps_com() const;

    Terms const terms_;
    Coverage& coverage_;
    std::string finding_;
    std::uint64_t steps_{0};
    Time now_{0};

    State state_{State::starting_up};
    Time since_{0};
    bool has_waited_{false};
    bool went_{false};  ///< a transition since the last wait
    bool has_ended_{false};
    bool must_end_{false};  ///< the driver, in this cycle
    bool is_to_prepare_{false};
    unsigned ticks_{0};
    std::deque<Command> records_;  ///< of the input device, not read yet
    std::deque<Command> queue_;
    Command last_{Command::none};

    unsigned words_owed_{1};
    unsigned machine_states_owed_{0};
    std::deque<std::string> power_off_owed_;  ///< what the power-off service is to be told, in this order

    // How long the driver may wait for its neighbours.
    Time longest_write_{0};
    Time longest_call_{0};
    Time busy_until_{0};  ///< the network manager, at the latest
    Time held_up_{0};     ///< in this state

    bool is_found_{false};
    bool is_asleep_{false};
    unsigned rests_{0};           ///< reports of rest in a row
    bool is_exact_{true};         ///< network management has taken whatever it was told
    bool is_standing_by_{false};  ///< from the beginning of a suspend to that of a resume
    bool default_held_{false};
    std::uint64_t bits_seen_{0};  ///< that applications have ever held
    std::map<std::string, Held> held_;
    std::map<std::string, Held> held_before_;  ///< the call that goes on

    Held_clients clients_;
};

}  // namespace lives

#endif
