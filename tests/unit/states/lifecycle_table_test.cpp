// The transition rules of starting up, running, NM controlled and post run, row by row: each table below lists its rows
// in the order in which they are tested, and every combination of command, conditions and flag is held against it.

#include "state_fixture.h"
#include "statemanager/states/nm_controlled_state.h"
#include "statemanager/states/post_run_state.h"
#include "statemanager/states/running_state.h"
#include "statemanager/states/startingup_state.h"

#include <optional>
#include <ostream>
#include <vector>

namespace ximo::ap::statemanager::states {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;
using virtio::Virtio_command;

/// Everything that a rule may ask.
struct Situation {
    Virtio_command command{};
    bool nm_allowed{};
    bool nm_found{};
    bool com_alive{};
    bool ecu_alive{};
    bool sleeping{};
    bool prepare_sd{};
    bool expired{};
};

void PrintTo(Situation const& situation, std::ostream* out) {
    *out << "command " << static_cast<int>(situation.command) << ", NM allowed " << situation.nm_allowed
         << ", NM found " << situation.nm_found << ", COM alive " << situation.com_alive << ", ECU alive "
         << situation.ecu_alive << ", sleeping " << situation.sleeping << ", prepare SD " << situation.prepare_sd
         << ", knocked out " << situation.expired;
}

enum class Flag { kept, cleared, set };

/// One row: when it holds, where it leads, what happens to the prepare-SD flag, and what is logged.
struct Row {
    bool (*holds)(Situation const&);
    State_id target;
    Flag flag;
    std::optional<test_support::Log_message> message;
};

Row const& first_that_holds(std::vector<Row> const& table, Situation const& situation) {
    for (auto const& row : table) {
        if (row.holds(situation)) {
            return row;
        }
    }
    throw std::logic_error("a table without its last row");
}

std::vector<Situation> every_situation() {
    std::vector<Situation> all;
    for (auto const command : k_all_commands) {
        for (unsigned bits = 0; bits < 128; ++bits) {
            auto const bit = [bits](unsigned number) { return (bits >> number & 1U) != 0; };
            all.push_back({command, bit(0), bit(1), bit(2), bit(3), bit(4), bit(5), bit(6)});
        }
    }
    return all;
}

bool always(Situation const& /*situation*/) {
    return true;
}

std::vector<Row> const& starting_up_table() {
    static auto const& table = *new std::vector<Row>{
        {[](Situation const& s) { return !s.nm_allowed; }, k_running, Flag::kept, {}},
        {[](Situation const& s) { return s.nm_found; }, k_running, Flag::kept, {}},
        {always, k_stay, Flag::kept,
         logged(LogLevel::kInfo, "Transition form startup to running not possible. Waiting for nm interface.")}};
    return table;
}

std::vector<Row> const& running_table() {
    static auto const& table = *new std::vector<Row>{
        {[](Situation const& s) { return s.command == Virtio_command::nm_controlled && s.nm_allowed; }, k_nm_controlled,
         Flag::cleared,
         logged(LogLevel::kVerbose,
                "Transition from Running to NM controlled possible. Prepare SD flag set to false state.")},
        {[](Situation const& s) { return s.command == Virtio_command::nm_controlled_prepare_sd && s.nm_allowed; },
         k_nm_controlled, Flag::set,
         logged(LogLevel::kVerbose,
                "Transition from Running to NM controlled possible.  Prepare SD flag set to true state.")},
        {[](Situation const& s) { return s.command == Virtio_command::prepare_sd; }, k_preparing, Flag::kept,
         logged(LogLevel::kVerbose, "Transition form Running to Preparing Shutting Down possible.")},
        {[](Situation const& s) { return s.command == Virtio_command::shutdown; }, k_shutting_down, Flag::kept,
         logged(LogLevel::kVerbose, "Transition form Running to Shutting Down possible.")},
        {always, k_stay, Flag::kept, {}}};
    return table;
}

std::vector<Row> const& nm_controlled_table() {
    static auto const running = logged(LogLevel::kVerbose, "Transition form NM controled state to Running possible.");
    static auto const post_run = logged(LogLevel::kVerbose, "Transition form NM controled state to Post Run possible.");
    static auto const shutting_down =
        logged(LogLevel::kVerbose, "Transition form NM controled state to Shutting Down possible.");
    static auto const preparing =
        logged(LogLevel::kVerbose, "Transition form NM controled state to Preparing (transient) possible.");
    static auto const& table = *new std::vector<Row>{
        {[](Situation const& s) { return s.command == Virtio_command::run; }, k_running, Flag::cleared, running},
        {[](Situation const& s) { return s.sleeping && s.ecu_alive; }, k_post_run, Flag::kept, post_run},
        {[](Situation const& s) { return s.command == Virtio_command::shutdown; }, k_shutting_down, Flag::cleared,
         shutting_down},
        {[](Situation const& s) { return s.sleeping && !s.ecu_alive && !s.prepare_sd; }, k_shutting_down, Flag::cleared,
         shutting_down},
        {[](Situation const& s) { return s.command == Virtio_command::prepare_sd; }, k_preparing, Flag::cleared,
         preparing},
        {[](Situation const& s) { return s.sleeping && !s.ecu_alive && s.prepare_sd; }, k_preparing, Flag::cleared,
         preparing},
        {always, k_stay, Flag::kept, {}}};
    return table;
}

std::vector<Row> const& post_run_table() {
    static auto const nm_controlled =
        logged(LogLevel::kVerbose, "Transition form Post Run state to NmControlled possible.");
    static auto const shutting_down =
        logged(LogLevel::kVerbose, "Transition form Post Run state to Shutting Down possible.");
    static auto const running = logged(LogLevel::kVerbose, "Transition form Post Run state to Running possible.");
    static auto const preparing =
        logged(LogLevel::kVerbose, "Transition form Post Run state to Preparing (transient) possible.");
    static auto const& table = *new std::vector<Row>{
        {[](Situation const& s) { return s.com_alive; }, k_nm_controlled, Flag::kept, nm_controlled},
        {[](Situation const& s) { return s.command == Virtio_command::shutdown; }, k_shutting_down, Flag::cleared,
         shutting_down},
        {[](Situation const& s) { return (!s.ecu_alive || s.expired) && !s.prepare_sd; }, k_shutting_down,
         Flag::cleared, shutting_down},
        {[](Situation const& s) { return s.command == Virtio_command::run; }, k_running, Flag::cleared, running},
        {[](Situation const& s) { return s.command == Virtio_command::prepare_sd; }, k_preparing, Flag::cleared,
         preparing},
        {[](Situation const& s) { return (!s.ecu_alive || s.expired) && s.prepare_sd; }, k_preparing, Flag::cleared,
         preparing},
        {always, k_stay, Flag::kept, {}}};
    return table;
}

class Lifecycle_table : public State_test {
 protected:
    template <class Make_state>
    void expect_in_every_situation(std::vector<Row> const& table, Make_state const& make_state) {
        for (auto const& situation : every_situation()) {
            SCOPED_TRACE(testing::PrintToString(situation));
            arrange(situation);
            auto const sut = make_state(situation);
            expect_first_row_that_holds(*sut, table, situation);
        }
    }

 private:
    void arrange(Situation const& situation) {
        services->nm_found = situation.nm_found;
        services->com_alive = situation.com_alive;
        services->ecu_alive = situation.ecu_alive;
        services->sleeping = situation.sleeping;
        State_interface::set_prepare_SD_flag(situation.prepare_sd);
        log.clear();
    }

    void expect_first_row_that_holds(State_interface& sut, std::vector<Row> const& table, Situation const& situation) {
        auto const& row = first_that_holds(table, situation);
        EXPECT_EQ(sut.check_transition(situation.command), row.target);
        if (row.message) {
            EXPECT_THAT(log.messages(), ElementsAre(*row.message));
        } else {
            EXPECT_THAT(log.messages(), IsEmpty());
        }
        auto const expected_flag = row.flag == Flag::kept ? situation.prepare_sd : row.flag == Flag::set;
        EXPECT_EQ(State_interface::get_prepare_SD_flag(), expected_flag);
        EXPECT_FALSE(State_interface::get_forced_shutdown_flag());
        EXPECT_THAT(services->actions, IsEmpty());
    }
};

TEST_F(Lifecycle_table, Holds_in_starting_up) {
    expect_in_every_situation(starting_up_table(), [&](auto const& situation) {
        return std::make_unique<Startingup_state>(services, shared_memory, situation.nm_allowed);
    });
}

TEST_F(Lifecycle_table, Holds_in_running) {
    expect_in_every_situation(running_table(), [&](auto const& situation) {
        return std::make_unique<Running_state>(services, shared_memory, em, situation.nm_allowed, true);
    });
}

TEST_F(Lifecycle_table, Holds_in_NM_controlled) {
    expect_in_every_situation(nm_controlled_table(), [&](auto const& /*situation*/) {
        return std::make_unique<Nm_controlled_state>(services, shared_memory);
    });
}

TEST_F(Lifecycle_table, Holds_in_post_run) {
    expect_in_every_situation(post_run_table(), [&](auto const& situation) {
        return std::make_unique<Post_run_state>(services, shared_memory, situation.expired ? 0 : 1);
    });
}

/// A network that falls asleep between two questions of the same cycle.
class Network_falling_asleep : public test_support::Fake_service_handler {
 public:
    explicit Network_falling_asleep(int questions_awake) : awake_(questions_awake) {}
    bool ecu_in_sleep_mode() const override { return awake_-- <= 0; }

 private:
    mutable int awake_;
};

TEST_F(Lifecycle_table, Of_NM_controlled_asks_anew_at_each_row) {
    Nm_controlled_state shutting_down(std::make_shared<Network_falling_asleep>(1), shared_memory);
    EXPECT_EQ(shutting_down.check_transition(Virtio_command::none), k_shutting_down);
    State_interface::set_prepare_SD_flag(true);
    Nm_controlled_state preparing(std::make_shared<Network_falling_asleep>(2), shared_memory);
    EXPECT_EQ(preparing.check_transition(Virtio_command::none), k_preparing);
}

}  // namespace ximo::ap::statemanager::states
