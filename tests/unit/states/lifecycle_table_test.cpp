// What a row of NM controlled asks is asked anew: the answers may differ within one cycle.

#include "state_fixture.h"
#include "statemanager/states/nm_controlled_state.h"

#include <optional>
#include <ostream>
#include <vector>

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

class Lifecycle_table : public State_test {};

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
