#include "statemanager/config/json_conversion.h"

#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using nlohmann::json;
using test_support::reason;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;
using Bytes = std::vector<std::uint8_t>;

std::uint32_t number(char const* text) {
    return json_to<std::uint32_t>(json::parse(text));
}
Bytes bytes(char const* text) {
    return json_to<Bytes>(json::parse(text));
}

template <class Value>
std::string refusal(char const* text) {
    return reason([text] { json_to<Value>(json::parse(text)); });
}

TEST(Json_conversion, An_unsigned_number_is_taken_as_it_is) {
    EXPECT_EQ(number("0"), 0U);
    EXPECT_EQ(number("3"), 3U);
    EXPECT_EQ(number("4294967295"), 4294967295U);
}

TEST(Json_conversion, A_number_keeps_its_lowest_32_bits) {
    EXPECT_EQ(number("4294967296"), 0U);
    EXPECT_EQ(number("18446744073709551615"), 4294967295U);
    EXPECT_EQ(number("-1"), 4294967295U);
    EXPECT_EQ(number("-9223372036854775808"), 0U);
}

TEST(Json_conversion, A_fraction_is_dropped) {
    EXPECT_EQ(number("2.0"), 2U);
    EXPECT_EQ(number("2.9"), 2U);
    EXPECT_EQ(number("3e2"), 300U);
    EXPECT_EQ(number("-0.9"), 0U);
    EXPECT_EQ(number("4294967295.5"), 4294967295U);
}

TEST(Json_conversion, A_fractional_number_outside_the_range_wraps_as_a_whole_one_does) {
    EXPECT_EQ(number("-1.0"), number("-1"));
    EXPECT_EQ(number("-1.5"), number("-1"));
    EXPECT_EQ(number("4294967297.25"), 1U);
    EXPECT_EQ(number("-4294967297.0"), number("-4294967297"));
    EXPECT_EQ(number("1e19"), number("10000000000000000000"));
    EXPECT_EQ(number("1e19"), 2313682944U);
    EXPECT_EQ(number("1e300"), 0U);
    EXPECT_EQ(number("-1.7976931348623157e308"), 0U);
}

TEST(Json_conversion, Only_a_number_is_a_number) {
    EXPECT_THAT(refusal<std::uint32_t>("\"3\""), HasSubstr("type must be number, but is string"));
    EXPECT_THAT(refusal<std::uint32_t>("true"), HasSubstr("type must be number, but is boolean"));
    EXPECT_THAT(refusal<std::uint32_t>("null"), HasSubstr("type must be number, but is null"));
    EXPECT_THAT(refusal<std::uint32_t>("[3]"), HasSubstr("type must be number, but is array"));
    EXPECT_THAT(refusal<std::uint32_t>("{}"), HasSubstr("type must be number, but is object"));
}

TEST(Json_conversion, Only_a_boolean_is_a_boolean) {
    EXPECT_TRUE(json_to<bool>(true));
    EXPECT_FALSE(json_to<bool>(false));
    EXPECT_THAT(refusal<bool>("1"), HasSubstr("type must be boolean, but is number"));
    EXPECT_THAT(refusal<bool>("\"true\""), HasSubstr("type must be boolean, but is string"));
    EXPECT_THAT(refusal<bool>("null"), HasSubstr("type must be boolean, but is null"));
}

TEST(Json_conversion, Only_a_string_is_a_string) {
    EXPECT_EQ(json_to<std::string>("text"), "text");
    EXPECT_EQ(json_to<std::string>(""), "");
    EXPECT_THAT(refusal<std::string>("1"), HasSubstr("type must be string, but is number"));
    EXPECT_THAT(refusal<std::string>("null"), HasSubstr("type must be string, but is null"));
}

TEST(Json_conversion, An_array_of_numbers_is_a_byte_vector) {
    EXPECT_THAT(bytes("[]"), IsEmpty());
    EXPECT_THAT(bytes("[0, 1, 255]"), ElementsAre(0, 1, 255));
}

TEST(Json_conversion, A_number_that_is_no_byte_keeps_its_lowest_8_bits) {
    EXPECT_THAT(bytes("[256, 257, -1, 1.9, -1.5, 300.7, 4294967298]"), ElementsAre(0, 1, 255, 1, 255, 44, 2));
}

TEST(Json_conversion, Only_an_array_of_numbers_is_a_byte_vector) {
    EXPECT_THAT(refusal<Bytes>("1"), HasSubstr("type must be array, but is number"));
    EXPECT_THAT(refusal<Bytes>("\"00 01\""), HasSubstr("type must be array, but is string"));
    EXPECT_THAT(refusal<Bytes>("null"), HasSubstr("type must be array, but is null"));
    EXPECT_THAT(refusal<Bytes>("{\"a\": 1}"), HasSubstr("type must be array, but is object"));
    EXPECT_THAT(refusal<Bytes>("[1, \"2\"]"), HasSubstr("type must be number, but is string"));
    EXPECT_THAT(refusal<Bytes>("[1, true]"), HasSubstr("type must be number, but is boolean"));
    EXPECT_THAT(refusal<Bytes>("[[1]]"), HasSubstr("type must be number, but is array"));
}

TEST(Parse_document, A_byte_order_mark_is_skipped) {
    EXPECT_EQ(parse_document("\xef\xbb\xbf{\"a\": 1}"), json::parse("{\"a\": 1}"));
}

TEST(Parse_document, The_last_of_two_equal_keys_counts) {
    EXPECT_EQ(parse_document(R"({"a": 1, "b": {"c": 1}, "a": 2, "b": {"d": 1}})"),
              json::parse(R"({"a": 2, "b": {"d": 1}})"));
}

TEST(Parse_document, The_whole_text_is_one_document) {
    for (auto const* text : {"", " ", "{} {}", "{}}", "{},", "{\"a\": 1", "{\"a\": 1,}", "// comment\n{}", "{'a': 1}",
                             "{\"a\": 01}", "{\"a\": NaN}", "{\"a\": 1e999}", "{\"a\": \"\xff\"}"}) {
        EXPECT_THROW(parse_document(text), json::exception) << text;
    }
}

TEST(Parse_document, A_zero_byte_does_not_end_the_document_early) {
    for (std::string_view const text :
         {std::string_view("{}\0", 3), std::string_view("{}\0garbage", 10), std::string_view("\0{}", 3)}) {
        EXPECT_THAT([=] { parse_document(text); }, ThrowsMessage<std::runtime_error>("it contains a zero byte"));
    }
}

TEST(Parse_document, Thirty_two_levels_are_read_and_more_are_refused) {
    auto const nested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };

    EXPECT_NO_THROW(parse_document(nested(33)));
    EXPECT_THAT([&] { parse_document(nested(34)); },
                ThrowsMessage<std::runtime_error>("values are nested deeper than 32 levels"));
}

TEST(Parse_document, A_million_levels_are_refused_without_exhausting_the_stack) {
    std::string objects;
    for (int level = 0; level < 200000; ++level) {
        objects += "{\"a\":";
    }

    EXPECT_THROW(parse_document(std::string(1000000, '[')), std::runtime_error);
    EXPECT_THROW(parse_document(objects), std::runtime_error);
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
