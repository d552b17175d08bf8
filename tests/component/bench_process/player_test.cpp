#include "bench/process/player.h"

#include <chrono>
#include <stdexcept>

#include <gtest/gtest.h>

namespace bench {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// A player in shell: says that it is ready, then runs the rest.
std::vector<std::string> script(std::string const& rest) {
    return {"sh", "-c", R"(echo '{"event":"ready"}'; )" + rest};
}

TEST(Player_test, A_program_that_ends_before_it_is_ready_is_an_error) {
    try {
        Player const sut({"sh", "-c", "exit 3"});
        FAIL() << "it is ready";
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(error.what(), "sh is not ready, it ended with status 3");
    }
}

TEST(Player_test, A_command_to_a_player_that_ended_is_an_error) {
    Player sut(script("exit 0"));
    sut.process().wait(10s);
    EXPECT_THROW(sut.command({{"do", "x"}}), std::runtime_error);
}

TEST(Player_test, Lines_that_are_no_objects_are_left_out) {
    Player sut(script(R"(echo nonsense; echo '[1]'; echo '{"event":"last"}'; cat >/dev/null)"));
    sut.await_event("last");
    EXPECT_EQ(sut.log().messages().size(), 2U);
}

TEST(Player_test, Nothing_is_returned_when_nothing_comes_within_the_time) {
    Player sut(script("cat >/dev/null"));
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(sut.log().await([](json const&) { return false; }, 30ms), std::nullopt);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 30ms);
}

TEST(Player_test, Members_are_compared_by_name_and_value) {
    json const message{{"a", 1}, {"b", "x"}};
    EXPECT_TRUE(has_members(message, json::object()));
    EXPECT_TRUE(has_members(message, {{"a", 1}}));
    EXPECT_FALSE(has_members(message, {{"a", 2}}));
    EXPECT_FALSE(has_members(message, {{"c", 1}}));
}

}  // namespace
}  // namespace bench
