// The transition rules of preparing, prepared for shutdown, resuming and shutting down against every command and every
// progress of the notification.

#include "state_fixture.h"
#include "statemanager/states/prepared_sd_state.h"
#include "statemanager/states/preparing_state.h"
#include "statemanager/states/resuming_state.h"
#include "statemanager/states/shutting_down_state.h"

namespace ximo::ap::statemanager::states {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;
using virtio::Virtio_command;

class Suspend_table : public State_test {
 protected:
    template <class Expect>
    void in_every_situation(Expect const& expect) {
        for (auto const command : k_all_commands) {
            for (unsigned bits = 0; bits < 4; ++bits) {
                bool const busy = (bits & 1U) != 0;
                bool const prepare_sd = (bits & 2U) != 0;
                SCOPED_TRACE(testing::Message() << "command " << static_cast<int>(command) << ", busy " << busy
                                                << ", prepare SD " << prepare_sd);
                notifier->busy = busy;
                State_interface::set_forced_shutdown_flag(false);
                State_interface::set_prepare_SD_flag(prepare_sd);
                log.clear();
                expect(command, busy);
                EXPECT_EQ(State_interface::get_prepare_SD_flag(), prepare_sd) << "it is of the network phase";
            }
        }
    }

    void expect_transition(State_interface& sut, Virtio_command command, unsigned target, char const* message) {
        EXPECT_EQ(sut.check_transition(command), target);
        if (message != nullptr) {
            EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, message)));
        } else {
            EXPECT_THAT(log.messages(), IsEmpty());
        }
    }
};

TEST_F(Suspend_table, Holds_in_preparing) {
    Preparing_state sut(services, shared_memory, notifier, nullptr);
    in_every_situation([&](Virtio_command command, bool busy) {
        if (command == Virtio_command::run) {
            expect_transition(sut, command, k_resuming, "Transition from Preparing to Resuming");
        } else {
            expect_transition(sut, command, busy ? k_stay : k_prepared_sd, nullptr);
        }
        EXPECT_FALSE(State_interface::get_forced_shutdown_flag());
    });
}

TEST_F(Suspend_table, Holds_in_prepared_for_shutdown) {
    PreparedSD_state sut(shared_memory);
    in_every_situation([&](Virtio_command command, bool /*busy*/) {
        if (command == Virtio_command::run) {
            expect_transition(sut, command, k_resuming, "Transition from PreparedSD to Resuming");
        } else if (command == Virtio_command::shutdown) {
            expect_transition(sut, command, k_shutting_down, "Transition from PreparedSD to Shutting Down");
        } else {
            expect_transition(sut, command, k_stay, nullptr);
        }
        EXPECT_EQ(State_interface::get_forced_shutdown_flag(), command == Virtio_command::shutdown);
    });
}

TEST_F(Suspend_table, Holds_in_resuming) {
    Resuming_state sut(services, shared_memory, notifier);
    in_every_situation([&](Virtio_command command, bool busy) {
        if (command == Virtio_command::shutdown) {
            expect_transition(sut, command, k_shutting_down,
                              "Transition form Resuming state to Shutting Down possible.");
        } else {
            expect_transition(sut, command, busy ? k_stay : k_running, nullptr);
        }
        EXPECT_FALSE(State_interface::get_forced_shutdown_flag());
    });
}

TEST_F(Suspend_table, Holds_in_shutting_down) {
    Shutting_down_state sut(services, shared_memory, em, true, 60, nullptr);
    in_every_situation(
        [&](Virtio_command command, bool /*busy*/) { expect_transition(sut, command, k_stay, nullptr); });
}

}  // namespace ximo::ap::statemanager::states
