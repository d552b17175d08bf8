#include "command.h"

#include <string>

#include <gmock/gmock.h>

namespace power_off {
namespace {

using std::chrono::milliseconds;

template <class Kind>
Kind parsed(std::string const& line) {
    auto const command = parse(line);
    EXPECT_TRUE(command && std::holds_alternative<Kind>(*command)) << line;
    return command && std::holds_alternative<Kind>(*command) ? std::get<Kind>(*command) : Kind{};
}

TEST(Command, Lookup_has_the_name_of_a_process) {
    EXPECT_EQ(parsed<Lookup>("lookup vyn_per_daemon").name, "vyn_per_daemon");
}

TEST(Command, Lookup_takes_no_path_and_nothing_that_is_no_name) {
    for (auto const& line : {std::string("lookup"), std::string("lookup "), std::string("lookup /bin/sh"),
                             std::string("lookup a b"), "lookup " + std::string(65, 'x')}) {
        EXPECT_FALSE(parse(line)) << line;
    }
}

TEST(Command, Terminate_stands_alone) {
    parsed<Terminate>("terminate");
    EXPECT_FALSE(parse("terminate now"));
}

TEST(Command, Power_off_has_a_budget_in_milliseconds) {
    EXPECT_EQ(parsed<Power_off>("poweroff 60000").budget, milliseconds(60'000));
    EXPECT_EQ(parsed<Power_off>("poweroff 0").budget, milliseconds(0));
}

TEST(Command, Power_off_with_a_negative_time_has_none_left) {
    EXPECT_EQ(parsed<Power_off>("poweroff -1").budget, milliseconds(0));
}

TEST(Command, Power_off_is_bounded_by_a_day) {
    EXPECT_EQ(parsed<Power_off>("poweroff 9223372036854775807").budget, std::chrono::hours(24));
}

TEST(Command, Power_off_without_a_number_is_none) {
    for (auto const* const line :
         {"poweroff", "poweroff ", "poweroff soon", "poweroff 1s", "poweroff 1 2", "poweroff 9223372036854775808"}) {
        EXPECT_FALSE(parse(line)) << line;
    }
}

TEST(Command, Of_another_kind_is_none) {
    for (auto const* const line : {"", " ", "Lookup x", "reboot", "power off"}) {
        EXPECT_FALSE(parse(line)) << line;
    }
}

}  // namespace
}  // namespace power_off
