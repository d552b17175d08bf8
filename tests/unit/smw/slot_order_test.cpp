#include "statemanager/smw/shared_memory_reboot.h"
#include "statemanager/smw/shared_memory_update.h"
#include "support/virtual_slot.h"

#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::smw {
namespace {

using test_support::virtual_slot;
using testing::ElementsAre;

TEST(Virtual_operations, The_state_words_stand_in_the_order_of_the_interface) {
    using Sut = Shared_memory_update;
    std::vector<std::size_t> const slots{
        virtual_slot(&Sut::write_to_memory), virtual_slot(&Sut::starting_up),       virtual_slot(&Sut::running),
        virtual_slot(&Sut::shutting_down),   virtual_slot(&Sut::run_nm_controlled), virtual_slot(&Sut::post_run),
        virtual_slot(&Sut::preparing),       virtual_slot(&Sut::prepared_4_sd),     virtual_slot(&Sut::resuming)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
}

TEST(Virtual_operations, The_restart_requests_stand_in_the_order_of_the_interface) {
    std::vector<std::size_t> const slots{virtual_slot(&Shared_memory_reboot::write_to_memory),
                                         virtual_slot(&Shared_memory_reboot::restart_vm),
                                         virtual_slot(&Shared_memory_reboot::restart_m3)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace ximo::ap::statemanager::smw
