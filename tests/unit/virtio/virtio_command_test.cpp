#include "statemanager/virtio_command.h"

#include "statemanager/virtio_interface_abstract.h"
#include "support/virtual_slot.h"

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::virtio {
namespace {

using test_support::virtual_slot;

TEST(Virtio_command, Each_number_has_its_display_name) {
    char const* const names[] = {"Non", "Run", "NmControlled", "NMControlledPrepareSD", "PrepareSD", "Shutdown"};
    for (std::uint8_t number = 0; number < 6; ++number) {
        EXPECT_EQ(toString(static_cast<Virtio_command>(number)), names[number]);
    }
}

TEST(Virtio_command, A_number_that_is_no_command_has_an_empty_name) {
    EXPECT_EQ(toString(static_cast<Virtio_command>(6)), "");
    EXPECT_EQ(toString(static_cast<Virtio_command>(255)), "");
}

TEST(Virtio_command, Takes_one_byte) {
    EXPECT_EQ(sizeof(Virtio_command), 1U);
}

TEST(Virtio_interface_abstract, The_operations_stand_in_the_order_of_the_interface) {
    EXPECT_EQ(virtual_slot(&Virtio_interface_abstract::init), 1U);
    EXPECT_EQ(virtual_slot(&Virtio_interface_abstract::get_command), 2U);
    EXPECT_EQ(virtual_slot(&Virtio_interface_abstract::command_consumed), 3U);
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
