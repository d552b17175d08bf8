// The transition rules of all eight states: every combination of command, conditions and flag is held against the table
// that the tour and the page of the states have, too.

#include "bench/rules/rules.h"
#include "state_fixture.h"
#include "statemanager/states/nm_controlled_state.h"
#include "statemanager/states/post_run_state.h"
#include "statemanager/states/prepared_sd_state.h"
#include "statemanager/states/preparing_state.h"
#include "statemanager/states/resuming_state.h"
#include "statemanager/states/running_state.h"
#include "statemanager/states/shutting_down_state.h"
#include "statemanager/states/startingup_state.h"

#include <bitset>
#include <ostream>
#include <tuple>

namespace ximo::ap::statemanager::states {

namespace rules = bench::rules;

static_assert(static_cast<unsigned>(rules::State::nm_controlled) == k_nm_controlled);
static_assert(static_cast<unsigned>(rules::State::shutting_down) == k_shutting_down);
static_assert(static_cast<unsigned>(rules::State::stay) == k_stay);
static_assert(static_cast<unsigned>(rules::Command::shutdown) ==
              static_cast<unsigned>(virtio::Virtio_command::shutdown));

enum Fact : std::size_t { nm_used, nm_found, asleep, ecu_kept, com_kept, to_prepare, knocked_out, asked, k_facts };

/// A command, and which of the facts hold.
class Given : public rules::Situation {
 public:
    Given(virtio::Virtio_command command, std::bitset<k_facts> facts) : command_(command), facts_(facts) {}

    virtio::Virtio_command key() const { return command_; }
    bool has(Fact fact) const { return facts_[fact]; }

    rules::Command command() const override { return static_cast<rules::Command>(command_); }
    bool nm_is_used() const override { return has(nm_used); }
    bool nm_is_found() const override { return has(nm_found); }
    bool network_sleeps() const override { return has(asleep); }
    bool ecu_is_kept() const override { return has(ecu_kept); }
    bool com_is_kept() const override { return has(com_kept); }
    bool is_to_prepare() const override { return has(to_prepare); }
    bool time_is_over() const override { return has(knocked_out); }
    bool clients_are_asked() const override { return has(asked); }

    friend std::ostream& operator<<(std::ostream& out, Given const& given) {
        return out << "command " << static_cast<int>(given.command_)
                   << "; asked, knocked out, to prepare, COM, ECU, asleep, "
                   << "NM found, NM used: " << given.facts_;
    }

 private:
    virtio::Virtio_command command_;
    std::bitset<k_facts> facts_;
};

class Transition_table : public State_test {
 protected:
    std::unique_ptr<State_interface> make(rules::State state, Given const& given) {
        switch (state) {
            case rules::State::starting_up:
                return std::make_unique<Startingup_state>(services, shared_memory, given.has(nm_used));
            case rules::State::running:
                return std::make_unique<Running_state>(services, shared_memory, em, given.has(nm_used), true);
            case rules::State::nm_controlled:
                return std::make_unique<Nm_controlled_state>(services, shared_memory);
            case rules::State::post_run:
                return std::make_unique<Post_run_state>(services, shared_memory, given.has(knocked_out) ? 0 : 1);
            case rules::State::preparing:
                return std::make_unique<Preparing_state>(services, shared_memory, notifier, nullptr);
            case rules::State::prepared_sd:
                return std::make_unique<PreparedSD_state>(shared_memory);
            case rules::State::resuming:
                return std::make_unique<Resuming_state>(services, shared_memory, notifier);
            default:
                return std::make_unique<Shutting_down_state>(services, shared_memory, em, true, 60, nullptr);
        }
    }

    void arrange(Given const& given) {
        services->nm_found = given.has(nm_found);
        services->com_alive = given.has(com_kept);
        services->ecu_alive = given.has(ecu_kept);
        services->sleeping = given.has(asleep);
        notifier->busy = given.has(asked);
        State_interface::set_prepare_SD_flag(given.has(to_prepare));
        State_interface::set_forced_shutdown_flag(false);
        log.clear();
    }

    /// Where it leads, the flags afterwards, and what was logged.
    using Outcome = std::tuple<unsigned, bool, bool, std::vector<test_support::Log_message>>;

    Outcome outcome(State_interface& state, Given const& given) {
        auto const target = state.check_transition(given.key());
        return {target, State_interface::get_prepare_SD_flag(), State_interface::get_forced_shutdown_flag(),
                log.messages()};
    }

    static Outcome expected(rules::Row const& row, Given const& given) {
        bool const prepares = row.intention == rules::Intention::stays ? given.has(to_prepare)
                                                                       : row.intention == rules::Intention::begins;
        bool const is_forced = row.from == rules::State::prepared_sd && row.to == rules::State::shutting_down;
        auto const level = row.to == rules::State::stay ? ara::log::LogLevel::kInfo : ara::log::LogLevel::kVerbose;
        std::vector<test_support::Log_message> messages;
        if (*row.message != '\0') {
            messages.push_back(test_support::logged(level, row.message));
        }
        return {static_cast<unsigned>(row.to), prepares, is_forced, messages};
    }

    /// The rows that decided in some situation.
    std::vector<std::string> hold_against_table(rules::State state) {
        std::vector<std::string> seen;
        for (auto const command : k_all_commands) {
            for (unsigned facts = 0; facts < 1U << k_facts; ++facts) {
                Given const given(command, facts);
                arrange(given);
                auto const& row = rules::deciding_row(state, given);
                EXPECT_EQ(outcome(*make(state, given), given), expected(row, given))
                    << rules::name(row) << ": " << given;
                if (std::find(seen.begin(), seen.end(), rules::name(row)) == seen.end()) {
                    seen.push_back(rules::name(row));
                }
            }
        }
        return seen;
    }
};

TEST_F(Transition_table, Holds_in_every_state_and_each_of_its_rows_decides_somewhere) {
    std::vector<std::string> seen;
    std::vector<std::string> all;
    for (auto const& row : rules::rows()) {
        all.push_back(rules::name(row));
        if (row.number == 1) {
            auto const of_state = hold_against_table(row.from);
            seen.insert(seen.end(), of_state.begin(), of_state.end());
        }
    }
    EXPECT_THAT(seen, testing::UnorderedElementsAreArray(all));
    EXPECT_THAT(services->actions, testing::IsEmpty());
    EXPECT_THAT(notifier->actions, testing::IsEmpty());
}

}  // namespace ximo::ap::statemanager::states
