#include "statemanager/config/local_to_string.h"

#include <gtest/gtest.h>

namespace ximo::ap::statemanager::config {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Local_to_string, A_number_is_unsigned_decimal) {
    EXPECT_EQ(local_to_string(std::uint32_t{0}), "0");
    EXPECT_EQ(local_to_string(std::uint32_t{4294967295}), "4294967295");
}

TEST(Local_to_string, A_boolean_is_written_as_in_the_file) {
    EXPECT_EQ(local_to_string(true), "true");
    EXPECT_EQ(local_to_string(false), "false");
}

TEST(Local_to_string, Text_stays_as_it_is) {
    EXPECT_EQ(local_to_string(std::string("a \"b\"\n")), "a \"b\"\n");
    EXPECT_EQ(local_to_string(std::string()), "");
}

TEST(Local_to_string, Each_byte_is_a_raw_character_and_a_blank) {
    EXPECT_EQ(local_to_string(Bytes{}), "");
    EXPECT_EQ(local_to_string(Bytes{65}), "A ");
    EXPECT_EQ(local_to_string(Bytes{65, 0, 255}), std::string("A \0 \xff ", 6));
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
