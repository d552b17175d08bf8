#include "status/rows.h"

#include "statemanager/states/state_interface.h"

#include <gmock/gmock.h>

namespace status {
namespace {

namespace states = ximo::ap::statemanager::states;
using ximo::ap::statemanager::virtio::Virtio_command;

constexpr std::uint64_t number(Virtio_command command) {
    return static_cast<std::uint64_t>(command);
}
constexpr std::uint64_t number(State state) {
    return static_cast<std::uint64_t>(state);
}

TEST(Status_rows, Count_the_states_as_the_states_do) {
    EXPECT_EQ(number(State::starting_up), states::k_starting_up);
    EXPECT_EQ(number(State::running), states::k_running);
    EXPECT_EQ(number(State::nm_controlled), states::k_nm_controlled);
    EXPECT_EQ(number(State::post_run), states::k_post_run);
    EXPECT_EQ(number(State::shutting_down), states::k_shutting_down);
    EXPECT_EQ(number(State::preparing), states::k_preparing);
    EXPECT_EQ(number(State::prepared_sd), states::k_prepared_sd);
    EXPECT_EQ(number(State::resuming), states::k_resuming);
}

TEST(Status_rows, Name_a_command_only_where_it_was_the_cause) {
    struct Known {
        State from;
        State to;
        Virtio_command oldest;
        std::uint64_t row;
        Virtio_command cause;
    };
    for (auto const& known :
         {Known{State::starting_up, State::running, Virtio_command::shutdown, 2, Virtio_command::none},
          {State::running, State::nm_controlled, Virtio_command::nm_controlled_prepare_sd, 2,
           Virtio_command::nm_controlled_prepare_sd},
          {State::nm_controlled, State::shutting_down, Virtio_command::shutdown, 3, Virtio_command::shutdown},
          {State::nm_controlled, State::shutting_down, Virtio_command::prepare_sd, 4, Virtio_command::none},
          {State::nm_controlled, State::preparing, Virtio_command::none, 6, Virtio_command::none},
          {State::nm_controlled, State::post_run, Virtio_command::shutdown, 2, Virtio_command::none},
          {State::post_run, State::nm_controlled, Virtio_command::run, 1, Virtio_command::none},
          {State::post_run, State::running, Virtio_command::run, 4, Virtio_command::run},
          {State::preparing, State::prepared_sd, Virtio_command::shutdown, 3, Virtio_command::none},
          {State::resuming, State::running, Virtio_command::none, 3, Virtio_command::none}}) {
        auto const row = row_of(number(known.from), number(known.to), number(known.oldest), true);
        EXPECT_EQ(row.number, known.row);
        EXPECT_EQ(row.command, number(known.cause));
    }
    EXPECT_EQ(row_of(number(State::starting_up), number(State::running), 0, false).number, 1U);
    EXPECT_EQ(row_of(99, 99, 99, true).number, 0U);
}

TEST(Status_rows, Know_which_commands_a_state_takes) {
    auto const blocked = [](State state, Virtio_command command, bool nm_usage = true) {
        return blocked_in(number(state), number(command), nm_usage);
    };
    EXPECT_EQ(blocked(State::running, Virtio_command::none), Blocked::not_at_all);
    EXPECT_EQ(blocked(State::running, Virtio_command::run), Blocked::by_state);
    EXPECT_EQ(blocked(State::running, Virtio_command::nm_controlled), Blocked::not_at_all);
    EXPECT_EQ(blocked(State::running, Virtio_command::nm_controlled, false), Blocked::by_setting);
    EXPECT_EQ(blocked(State::running, Virtio_command::prepare_sd, false), Blocked::not_at_all);
    EXPECT_EQ(blocked(State::nm_controlled, Virtio_command::run, false), Blocked::not_at_all);
    EXPECT_EQ(blocked(State::preparing, Virtio_command::shutdown), Blocked::by_state);
    EXPECT_EQ(blocked(State::resuming, Virtio_command::shutdown), Blocked::not_at_all);
    EXPECT_EQ(blocked(State::starting_up, Virtio_command::prepare_sd), Blocked::by_state);
}

TEST(Status_rows, Know_what_each_state_waits_for) {
    for (std::uint64_t state = 0; state < states::k_stay; ++state) {
        EXPECT_NE(condition_of(state), Condition::nothing) << state;
    }
    EXPECT_EQ(condition_of(states::k_stay), Condition::nothing);
}

}  // namespace
}  // namespace status
