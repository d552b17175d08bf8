#include "statemanager/states/state_factory.h"

#include "state_fixture.h"
#include "support/fake_client_states.h"

namespace ximo::ap::statemanager::states {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;
using virtio::Virtio_command;

class State_factory_of : public State_test {
 protected:
    State_factory_of() { configuration.set_smw_update_status_path(files.file("status")); }

    config::State_manager_config configuration;
};

TEST_F(State_factory_of, Builds_each_state_under_its_name) {
    State_factory const sut(configuration, services, em);
    std::vector<std::string> names;
    for (unsigned id = 0; id < 8; ++id) {
        names.push_back(sut.create_state(id)->get_name());
    }
    EXPECT_THAT(names, ElementsAre("Starting up", "Running", "NM Controlled", "Post Run", "Shutting down", "Preparing",
                                   "PreparedSD", "Resuming"));
}

TEST_F(State_factory_of, Builds_nothing_for_an_id_above_seven) {
    State_factory const sut(configuration, services, em);
    EXPECT_EQ(sut.create_state(8), nullptr);
    EXPECT_EQ(sut.create_state(9), nullptr);
    EXPECT_EQ(sut.create_state(4294967295U), nullptr);
}

// A writer of its own would begin at the start of the file again.
TEST_F(State_factory_of, Shares_one_control_file_among_its_states) {
    State_factory const sut(configuration, services, em);
    sut.create_state(k_starting_up)->entering_state();
    sut.create_state(k_running)->entering_state();
    EXPECT_EQ(written(), "startinguprunning");
}

TEST_F(State_factory_of, Shares_one_channel_of_the_fast_shutdown) {
    State_factory const sut(configuration, services, em);
    EXPECT_EQ(log.messages(LogLevel::kError).size(), 1U) << "the channel is opened once, and nobody reads it here";
    sut.create_state(k_preparing);
    sut.create_state(k_shutting_down);
    EXPECT_EQ(log.messages(LogLevel::kError).size(), 1U);
}

TEST_F(State_factory_of, Shares_one_notifier_with_the_configured_time_outs) {
    configuration.set_app_timeout(7);
    configuration.set_dm_timeout(3);
    State_factory const sut(configuration, services, em);
    auto& clients = *test_support::last_made_clients;
    auto const preparing = sut.create_state(k_preparing);
    preparing->entering_state();
    clients.requests.back().completed(client_state_notifier::Callback_status::succeeded, {});
    EXPECT_EQ(preparing->check_transition(Virtio_command::none), k_stay);
    sut.create_state(k_resuming)->entering_state();
    clients.requests.back().completed(client_state_notifier::Callback_status::succeeded, {});
    EXPECT_EQ(preparing->check_transition(Virtio_command::none), k_stay) << "the other state has turned it back";
    ASSERT_EQ(clients.requests.size(), 3U);
    EXPECT_EQ(clients.requests[0].timeout, std::chrono::seconds(3)) << "diagnostics";
    EXPECT_EQ(clients.requests[1].timeout, std::chrono::seconds(7)) << "applications";
    EXPECT_EQ(clients.requests[2].state, "kOn");
}

TEST_F(State_factory_of, Hands_on_whether_NM_is_used) {
    configuration.set_nm_usage(false);
    State_factory const sut(configuration, services, em);
    EXPECT_EQ(sut.create_state(k_starting_up)->check_transition(Virtio_command::none), k_running);
    EXPECT_EQ(sut.create_state(k_running)->check_transition(Virtio_command::nm_controlled), k_stay);
    configuration.set_nm_usage(true);
    EXPECT_EQ(sut.create_state(k_starting_up)->check_transition(Virtio_command::none), k_stay);
    EXPECT_EQ(sut.create_state(k_running)->check_transition(Virtio_command::nm_controlled), k_nm_controlled);
}

TEST_F(State_factory_of, Hands_on_whether_the_network_is_requested_on_entry) {
    configuration.set_request_network_on_entry_run_state(false);
    State_factory const sut(configuration, services, em);
    sut.create_state(k_running)->entering_state();
    EXPECT_THAT(services->actions, testing::IsEmpty());
    configuration.set_request_network_on_entry_run_state(true);
    sut.create_state(k_running)->entering_state();
    EXPECT_THAT(services->actions, ElementsAre("request_network"));
}

TEST_F(State_factory_of, Hands_on_the_knock_out_count_of_the_moment) {
    State_factory const sut(configuration, services, em);
    services->ecu_alive = true;
    configuration.set_knockout_timer(0);
    auto const expired = sut.create_state(k_post_run);
    configuration.set_knockout_timer(1);
    EXPECT_EQ(expired->check_transition(Virtio_command::none), k_shutting_down);
    EXPECT_EQ(sut.create_state(k_post_run)->check_transition(Virtio_command::none), k_stay);
}

TEST_F(State_factory_of, Opens_the_power_off_channel_of_the_machine) {
    State_factory const sut(configuration, services, em);
    EXPECT_THAT(test_support::Log_message(log.messages(LogLevel::kError).at(0)).arguments,
                Contains(test_support::Log_argument(std::string("/run/adaptive/poweroff"))));
}

}  // namespace
}  // namespace ximo::ap::statemanager::states
