#include "utilities/type_length_value.h"

#include "utilities/serialization.h"

#include <cstring>
#include <stdexcept>

#include <gmock/gmock.h>

namespace utilities {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Type_length_value, An_element_of_text_holds_its_characters_without_terminator) {
    Type_length_value const sut("kOn");

    EXPECT_EQ(sut.get_type(), Payload_type::string);
    EXPECT_THAT(sut.get_value(), ElementsAre('k', 'O', 'n'));
    EXPECT_EQ(sut.get_size(), 3U);
    EXPECT_EQ(sut.get_total_size(), 15U);
    EXPECT_EQ(sut.get_string(), "kOn");
}

TEST(Type_length_value, An_element_of_a_number_holds_its_four_bytes_in_the_order_of_the_host) {
    Type_length_value const sut(0x12345678U);

    std::uint32_t as_the_host_has_it = 0;
    ASSERT_EQ(sut.get_size(), 4U);
    std::memcpy(&as_the_host_has_it, sut.get_value().data(), 4);
    EXPECT_EQ(as_the_host_has_it, 0x12345678U);
    EXPECT_EQ(sut.get_type(), Payload_type::uint32);
    EXPECT_EQ(sut.get_total_size(), 16U);
    EXPECT_EQ(sut.get_uint32(), 0x12345678U);
}

TEST(Type_length_value, An_element_of_bytes_takes_type_and_bytes_as_they_are) {
    Type_length_value const sut(static_cast<Payload_type>(77), {0, 255, 1});

    EXPECT_EQ(static_cast<std::uint32_t>(sut.get_type()), 77U);
    EXPECT_THAT(sut.get_value(), ElementsAre(0, 255, 1));
}

TEST(Type_length_value, Text_may_be_empty_and_may_hold_zeros) {
    EXPECT_THAT(Type_length_value("").get_value(), IsEmpty());
    EXPECT_EQ(Type_length_value("").get_total_size(), 12U);
    EXPECT_EQ(Type_length_value(std::string("a\0b", 3)).get_string(), std::string("a\0b", 3));
}

TEST(Type_length_value, Text_and_number_are_read_whatever_the_type_says) {
    Type_length_value const number(Payload_type::string, {1, 0, 0, 0});
    Type_length_value const text(Payload_type::uint32, {'a', 'b'});

    EXPECT_EQ(number.get_uint32(), Type_length_value(Payload_type::uint32, {1, 0, 0, 0}).get_uint32());
    EXPECT_EQ(text.get_string(), "ab");
}

TEST(Type_length_value, A_number_is_the_first_four_bytes_of_a_longer_value) {
    auto bytes = Type_length_value(9U).get_value();
    bytes.push_back(200);

    EXPECT_EQ(Type_length_value(Payload_type::uint32, bytes).get_uint32(), 9U);
}

TEST(Type_length_value, A_number_shorter_than_four_bytes_is_refused) {
    for (std::size_t length = 0; length < 4; ++length) {
        Type_length_value const sut(Payload_type::uint32, Bytes(length));
        try {
            sut.get_uint32();
            ADD_FAILURE() << length;
        } catch (std::out_of_range const& error) {
            EXPECT_STREQ(error.what(), "reached end of data while parsing");
        }
    }
}

TEST(Type_length_value, The_types_have_the_numbers_of_the_wire) {
    EXPECT_EQ(static_cast<std::uint32_t>(Payload_type::string), 0U);
    EXPECT_EQ(static_cast<std::uint32_t>(Payload_type::uint32), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(Payload_type::list), 2U);
}

TEST(Type_length_value, Elements_are_equal_when_type_and_value_are) {
    EXPECT_EQ(Type_length_value("a"), Type_length_value(Payload_type::string, {'a'}));
    EXPECT_NE(Type_length_value("a"), Type_length_value("b"));
    EXPECT_NE(Type_length_value("a"), Type_length_value(Payload_type::list, {'a'}));
}

}  // namespace
}  // namespace utilities
