#include "statemanager/config/get_and_set.h"

#include "support/log_capture.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>
#include <optional>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using nlohmann::json;
using test_support::Log_capture;
using test_support::logged;
using test_support::reason;
using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

/// Gets one member and keeps what the setter was given.
template <class Value>
struct Got {
    Got(json const& object, std::string const& key)
        : result(get_and_set<Value>(object, key, [this](Value given) { value = std::move(given); })) {}
    std::optional<Value> value;
    bool result;
};

template <class Value>
void expect_got(json const& given, Value const& value, char const* text) {
    Log_capture log;

    Got<Value> const sut(json{{"Key", given}}, "Key");

    EXPECT_TRUE(sut.result);
    EXPECT_EQ(sut.value, value);
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "State_manager_json_parser: Get ", "Key",
                                                   " form configuration with value: ", text)));
}

TEST(Get_and_set, Hands_a_value_to_the_setter_and_logs_it_bytes_as_raw_characters) {
    expect_got<std::uint32_t>(42, 42, "42");
    expect_got<bool>(false, false, "false");
    expect_got<std::string>("/sys/x", "/sys/x", "/sys/x");
    expect_got<Bytes>({65, 66}, {65, 66}, "A B ");
}

TEST(Get_and_set, Logs_the_value_after_the_setter_was_called) {
    Log_capture log;

    get_and_set<std::uint32_t>(json{{"Timer", 1}}, "Timer", [](std::uint32_t) { ara::log::LogInfo() << "set"; });

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "set"),
                                            logged(LogLevel::kVerbose, "State_manager_json_parser: Get ", "Timer",
                                                   " form configuration with value: ", "1")));
}

TEST(Get_and_set, A_missing_member_is_logged_in_six_pieces_and_sets_nothing) {
    Log_capture log;
    json const object{{"Other", 1}};

    Got<std::uint32_t> const sut(object, "Timer");

    EXPECT_FALSE(sut.result);
    EXPECT_EQ(sut.value, std::nullopt);
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "State_manager_json_parser:", "Missing ", "Timer",
                                   "in configuration.", "caused by", reason([&] { object.at("Timer"); }))));
}

template <class Value>
void expect_incorrect_type(json const& object, std::string const& why) {
    Log_capture log;

    Got<Value> const sut(object, "Key");

    EXPECT_FALSE(sut.result);
    EXPECT_EQ(sut.value, std::nullopt);
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kDebug, "State_manager_json_parser:", "Incorrect key type: ", why)));
}

TEST(Get_and_set, A_member_of_another_type_is_logged_and_sets_nothing) {
    auto const refused = [](char const* wanted, char const* found) {
        return std::string("[json.exception.type_error.302] type must be ") + wanted + ", but is " + found;
    };
    expect_incorrect_type<std::uint32_t>({{"Key", "3"}}, refused("number", "string"));
    expect_incorrect_type<std::uint32_t>({{"Key", true}}, refused("number", "boolean"));
    expect_incorrect_type<bool>({{"Key", 1}}, refused("boolean", "number"));
    expect_incorrect_type<std::string>({{"Key", nullptr}}, refused("string", "null"));
    expect_incorrect_type<Bytes>({{"Key", 1}}, refused("array", "number"));
    expect_incorrect_type<Bytes>({{"Key", {1, "2"}}}, refused("number", "string"));
}

TEST(Get_and_set, A_member_of_something_that_is_no_object_is_of_an_incorrect_type) {
    for (auto const& object : {json(), json(1), json("text"), json::array({1})}) {
        expect_incorrect_type<std::uint32_t>(object, reason([&] { object.at("Key"); }));
    }
}

TEST(Get_and_set, Keys_are_compared_by_case) {
    EXPECT_FALSE((Got<std::uint32_t>(json{{"timer", 1}}, "Timer").result));
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
