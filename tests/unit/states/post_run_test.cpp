#include "state_fixture.h"
#include "statemanager/states/post_run_state.h"

namespace ximo::ap::statemanager::states {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using virtio::Virtio_command;

class Post_run : public State_test {};

TEST_F(Post_run, Stays_three_cycles_for_a_count_of_three_and_leaves_in_the_fourth) {
    Post_run_state sut(services, shared_memory, 3);
    services->ecu_alive = true;
    sut.entering_state();
    log.clear();
    for (int cycle = 0; cycle < 3; ++cycle) {
        ASSERT_EQ(sut.check_transition(Virtio_command::none), k_stay);
        sut.tick();
    }
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "Post rumn tick action"),
                                            logged(LogLevel::kDebug, "Post rumn tick action"),
                                            logged(LogLevel::kDebug, "Post rumn tick action")));
    EXPECT_EQ(sut.check_transition(Virtio_command::none), k_shutting_down);
}

TEST_F(Post_run, Begins_its_count_anew_with_each_entry) {
    Post_run_state sut(services, shared_memory, 1);
    services->ecu_alive = true;
    sut.entering_state();
    sut.tick();
    EXPECT_EQ(sut.check_transition(Virtio_command::none), k_shutting_down);
    sut.entering_state();
    EXPECT_EQ(sut.check_transition(Virtio_command::none), k_stay);
}

}  // namespace
}  // namespace ximo::ap::statemanager::states
