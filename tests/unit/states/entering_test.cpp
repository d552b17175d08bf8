#include "state_fixture.h"
#include "statemanager/states/nm_controlled_state.h"
#include "statemanager/states/post_run_state.h"
#include "statemanager/states/prepared_sd_state.h"
#include "statemanager/states/preparing_state.h"
#include "statemanager/states/resuming_state.h"
#include "statemanager/states/running_state.h"
#include "statemanager/states/startingup_state.h"

namespace ximo::ap::statemanager::states {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;

class Entering : public State_test {
 protected:
    void enter(State_interface& sut, char const* message) {
        EXPECT_TRUE(sut.entering_state());
        EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, message)));
    }
};

TEST_F(Entering, Starting_up_reports_its_word) {
    Startingup_state sut(services, shared_memory, true);
    enter(sut, "Entering startup state");
    EXPECT_EQ(written(), "startingup");
    EXPECT_THAT(services->actions, IsEmpty());
}

TEST_F(Entering, Running_requests_the_network_and_the_machine_state) {
    Running_state sut(services, shared_memory, em, true, true);
    enter(sut, "Entering running state");
    EXPECT_EQ(written(), "running");
    EXPECT_THAT(services->actions, ElementsAre("request_network"));
    EXPECT_THAT(em->actions, ElementsAre("request_running"));
}

TEST_F(Entering, Running_leaves_the_network_alone_when_it_is_not_used) {
    Running_state sut(services, shared_memory, em, false, true);
    sut.entering_state();
    EXPECT_THAT(services->actions, IsEmpty());
    EXPECT_THAT(em->actions, ElementsAre("request_running"));
}

TEST_F(Entering, Running_leaves_the_network_alone_when_it_is_not_to_be_requested_on_entry) {
    Running_state sut(services, shared_memory, em, true, false);
    sut.entering_state();
    EXPECT_THAT(services->actions, IsEmpty());
}

TEST_F(Entering, NM_controlled_releases_the_network) {
    Nm_controlled_state sut(services, shared_memory);
    enter(sut, "Entering NM controled state");
    EXPECT_EQ(written(), "runnmcontrolled");
    EXPECT_THAT(services->actions, ElementsAre("release_network"));
}

TEST_F(Entering, Post_run_reports_its_word) {
    Post_run_state sut(services, shared_memory, 3);
    enter(sut, "Entering post run state");
    EXPECT_EQ(written(), "postrun");
    EXPECT_THAT(services->actions, IsEmpty());
}

TEST_F(Entering, Preparing_starts_the_standby_of_everybody) {
    Preparing_state sut(services, shared_memory, notifier, nullptr);
    enter(sut, "Entering preparing state");
    EXPECT_EQ(written(), "preparing");
    EXPECT_THAT(notifier->actions, ElementsAre("request_standby"));
    EXPECT_THAT(services->actions, ElementsAre("standby"));
}

TEST_F(Entering, Prepared_for_shutdown_reports_its_word) {
    PreparedSD_state sut(shared_memory);
    enter(sut, "Entering PreparedSD state");
    EXPECT_EQ(written(), "prepared4sd");
}

TEST_F(Entering, Resuming_ends_the_standby_of_everybody) {
    Resuming_state sut(services, shared_memory, notifier);
    enter(sut, "Entering resuming state");
    EXPECT_EQ(written(), "resuming");
    EXPECT_THAT(notifier->actions, ElementsAre("request_resume"));
    EXPECT_THAT(services->actions, ElementsAre("end_standby"));
}

TEST_F(Entering, Needs_no_collaborator) {
    Running_state running(nullptr, nullptr, nullptr, true, true);
    Nm_controlled_state nm_controlled(nullptr, nullptr);
    Post_run_state post_run(nullptr, nullptr, 1);
    Preparing_state preparing(nullptr, nullptr, nullptr, nullptr);
    Resuming_state resuming(nullptr, nullptr, nullptr);
    for (State_interface* sut :
         std::initializer_list<State_interface*>{&running, &nm_controlled, &post_run, &preparing, &resuming}) {
        EXPECT_TRUE(sut->entering_state());
        sut->check_transition(virtio::Virtio_command::none);
    }
}

class Only_a_name : public State_interface {
 public:
    Only_a_name() : State_interface(nullptr, "Only a name") {}
};

TEST(State_interface, Does_nothing_and_stays_by_itself) {
    Only_a_name sut;
    EXPECT_TRUE(sut.entering_state());
    EXPECT_TRUE(sut.exiting_state());
    EXPECT_FALSE(sut.is_forced_shutdown());
    EXPECT_EQ(sut.check_transition(virtio::Virtio_command::shutdown), 8U);
    EXPECT_EQ(sut.get_name(), "Only a name");
    sut.tick();
}

TEST(State_interface, Shares_its_flags_among_all_states) {
    State_interface::set_prepare_SD_flag(true);
    State_interface::set_forced_shutdown_flag(true);
    EXPECT_TRUE(Only_a_name::get_prepare_SD_flag());
    EXPECT_TRUE(Only_a_name::get_forced_shutdown_flag());
    State_interface::set_prepare_SD_flag(false);
    State_interface::set_forced_shutdown_flag(false);
    EXPECT_FALSE(Only_a_name::get_prepare_SD_flag());
    EXPECT_FALSE(Only_a_name::get_forced_shutdown_flag());
}

}  // namespace
}  // namespace ximo::ap::statemanager::states
