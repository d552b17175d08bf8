#ifndef TESTS_SIMULATION_LIVES_HELD_RULES_H
#define TESTS_SIMULATION_LIVES_HELD_RULES_H

#include "bench/rules/rules.h"
#include "coverage.h"
#include "held_clients.h"
#include "held_network.h"
#include "held_restarts.h"
#include "simulation/life.h"
#include "terms.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace lives {

/// The rules of the machine as invariants over one life: told each entry of its timeline with its log, and each wait of
/// the driver.
class Held_rules {
 public:
    Held_rules(Terms terms, Coverage& coverage)
        : terms_(std::move(terms)),
          coverage_(coverage),
          clients_(terms_, [this](std::string const& what) { find(what); }),
          network_(terms_, [this](std::string const& what) { find(what); }),
          restarts_([this](std::string const& what) { find(what); }) {}

    Held_rules(Held_rules const&) = delete;  // its parts tell it what they find
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

    void find(std::string const& what);

    void read_record();
    void decide(std::optional<State> entered);
    void enter(State state);
    void take_word(simulation::Entry const& entry);
    void take_machine_state(simulation::Entry const& entry);
    void owe_power_off(std::deque<std::string> lines);
    void take_power_off(std::string const& line);
    void take_application(simulation::Entry const& entry);
    void take_request(simulation::Entry const& entry);
    void take_neighbour(simulation::Entry const& entry);
    void take_log(std::string const& text);

    void check_way_taken();

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
    Time held_up_{0};  ///< in this state

    Held_clients clients_;
    Held_network network_;
    Held_restarts restarts_;
};

}  // namespace lives

#endif
