// What a row of NM controlled asks is asked anew: the answers may differ within one cycle.

#include "state_fixture.h"
#include "statemanager/states/nm_controlled_state.h"

#include <optional>
#include <ostream>
#include <utility>
#include <vector>

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

class Lifecycle_table : public State_test {};

/// Answers that differ from question to question of the same cycle; the last one of each stays.
class Changing_network : public test_support::Fake_service_handler {
 public:
    Changing_network(std::vector<bool> sleeps, std::vector<bool> keeps)
        : sleeps_(std::move(sleeps)), keeps_(std::move(keeps)) {}
    bool ecu_in_sleep_mode() const override { return next(sleeps_); }
    bool apps_keep_ecu_alive() const override { return next(keeps_); }

 private:
    static bool next(std::vector<bool>& answers) {
        bool const answer = answers.front();
        if (answers.size() > 1) {
            answers.erase(answers.begin());
        }
        return answer;
    }

    mutable std::vector<bool> sleeps_;
    mutable std::vector<bool> keeps_;
};

TEST_F(Lifecycle_table, Of_NM_controlled_asks_both_conditions_anew_at_each_row) {
    struct Change {
        std::vector<bool> sleeps;
        std::vector<bool> keeps;
        bool prepare_sd;
        unsigned target;
    };
    for (auto const& change :
         {Change{{false, true}, {false}, false, k_shutting_down},
          Change{{false, false, true}, {false}, true, k_preparing}, Change{{true, false}, {false}, false, k_stay},
          Change{{true}, {false, true}, false, k_stay}, Change{{true}, {false, false, true}, true, k_stay},
          Change{{true}, {false, true, false}, true, k_preparing}}) {
        State_interface::set_prepare_SD_flag(change.prepare_sd);
        Nm_controlled_state sut(std::make_shared<Changing_network>(change.sleeps, change.keeps), shared_memory);
        EXPECT_EQ(sut.check_transition(Virtio_command::none), change.target)
            << testing::PrintToString(change.sleeps) << testing::PrintToString(change.keeps);
    }
}

}  // namespace ximo::ap::statemanager::states
