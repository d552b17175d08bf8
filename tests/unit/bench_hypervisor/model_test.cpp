#include "bench/hypervisor/model.h"

#include <gtest/gtest.h>

namespace bench::hypervisor {
namespace {

constexpr std::uint64_t k_keyboard = 0b11;

TEST(Model_test, At_first_there_are_the_two_control_files_and_no_device) {
    Model const sut;
    EXPECT_TRUE(sut.devices().empty());
    EXPECT_NE(sut.control_file("set_status"), nullptr);
    EXPECT_NE(sut.control_file("command_request"), nullptr);
    EXPECT_EQ(sut.control_file("event0"), nullptr);
}

TEST(Model_test, Devices_are_listed_in_the_order_in_which_they_were_added) {
    Model sut;
    sut.add_device("event7", k_keyboard);
    sut.add_device("event1", 0);
    ASSERT_EQ(sut.devices().size(), 2U);
    EXPECT_EQ(sut.devices()[0]->name(), "event7");
    EXPECT_EQ(sut.device("event1")->event_types(), 0U);
}

TEST(Model_test, A_name_that_is_taken_or_can_not_be_a_file_name_is_refused) {
    Model sut;
    sut.add_device("event0", k_keyboard);
    for (std::string const& name :
         {std::string("event0"), std::string("set_status"), std::string(), std::string("."), std::string(".."),
          std::string("a/b"), std::string("a\0b", 3), std::string(256, 'x')}) {
        EXPECT_EQ(sut.add_device(name, k_keyboard), nullptr) << name;
    }
    EXPECT_NE(sut.add_device(std::string(255, 'x'), k_keyboard), nullptr);
}

TEST(Model_test, A_removed_device_hangs_up_tells_its_readers_and_frees_its_name) {
    Model sut;
    auto const device = sut.add_device("event0", k_keyboard);
    Input_device const* changed = nullptr;
    sut.on_change([&](Input_device& which) { changed = &which; });
    EXPECT_TRUE(sut.remove_device("event0"));
    EXPECT_TRUE(device->hung_up());
    EXPECT_EQ(changed, device.get());
    EXPECT_EQ(sut.device("event0"), nullptr);
    EXPECT_FALSE(sut.remove_device("event0"));
    EXPECT_NE(sut.add_device("event0", k_keyboard), nullptr);
}

}  // namespace
}  // namespace bench::hypervisor
