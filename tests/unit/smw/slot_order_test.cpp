#include "statemanager/smw/shared_memory_reboot.h"
#include "statemanager/smw/shared_memory_update.h"
#include "support/virtual_slot.h"

#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::smw {
namespace {

TEST(Virtual_operations, The_state_words_stand_in_the_order_of_the_interface) {
    using Sut = Shared_memory_update;
    test_support::expect_slots_from(1, &Sut::write_to_memory, &Sut::starting_up, &Sut::running, &Sut::shutting_down,
                                    &Sut::run_nm_controlled, &Sut::post_run, &Sut::preparing, &Sut::prepared_4_sd,
                                    &Sut::resuming);
}

TEST(Virtual_operations, The_restart_requests_stand_in_the_order_of_the_interface) {
    test_support::expect_slots_from(1, &Shared_memory_reboot::write_to_memory, &Shared_memory_reboot::restart_vm,
                                    &Shared_memory_reboot::restart_m3);
}

}  // namespace
}  // namespace ximo::ap::statemanager::smw
