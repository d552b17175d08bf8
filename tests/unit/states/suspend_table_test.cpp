// The transition rules of preparing, prepared for shutdown, resuming and shutting down against every command and every
// progress of the notification.

#include "state_fixture.h"
#include "statemanager/states/prepared_sd_state.h"
#include "statemanager/states/preparing_state.h"
#include "statemanager/states/resuming_state.h"
#include "statemanager/states/shutting_down_state.h"

#include <tuple>

namespace ximo::ap::statemanager::states {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;
using virtio::Virtio_command;

class Suspend_table : public State_test, public testing::WithParamInterface<std::tuple<Virtio_command, bool>> {
 protected:
    Suspend_table() { notifier->busy = busy(); }

    static Virtio_command command() { return std::get<0>(GetParam()); }
    static bool busy() { return std::get<1>(GetParam()); }

    void expect(State_interface& sut, unsigned target, char const* message) {
        EXPECT_EQ(sut.check_transition(command()), target);
        if (message != nullptr) {
            EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, message)));
        } else {
            EXPECT_THAT(log.messages(), IsEmpty());
        }
    }
};

TEST_P(Suspend_table, Holds_in_preparing) {
    Preparing_state sut(services, shared_memory, notifier, nullptr);
    if (command() == Virtio_command::run) {
        expect(sut, k_resuming, "Transition from Preparing to Resuming");
    } else {
        expect(sut, busy() ? k_stay : k_prepared_sd, nullptr);
    }
    EXPECT_FALSE(State_interface::get_forced_shutdown_flag());
}

TEST_P(Suspend_table, Holds_in_prepared_for_shutdown) {
    PreparedSD_state sut(shared_memory);
    if (command() == Virtio_command::run) {
        expect(sut, k_resuming, "Transition from PreparedSD to Resuming");
    } else if (command() == Virtio_command::shutdown) {
        expect(sut, k_shutting_down, "Transition from PreparedSD to Shutting Down");
    } else {
        expect(sut, k_stay, nullptr);
    }
    EXPECT_EQ(State_interface::get_forced_shutdown_flag(), command() == Virtio_command::shutdown);
}

TEST_P(Suspend_table, Holds_in_resuming) {
    Resuming_state sut(services, shared_memory, notifier);
    if (command() == Virtio_command::shutdown) {
        expect(sut, k_shutting_down, "Transition form Resuming state to Shutting Down possible.");
    } else {
        expect(sut, busy() ? k_stay : k_running, nullptr);
    }
    EXPECT_FALSE(State_interface::get_forced_shutdown_flag());
}

TEST_P(Suspend_table, Holds_in_shutting_down) {
    Shutting_down_state sut(services, shared_memory, em, true, 60, nullptr);
    expect(sut, k_stay, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Every_situation, Suspend_table,
                         testing::Combine(testing::ValuesIn(k_all_commands), testing::Bool()));

}  // namespace ximo::ap::statemanager::states
