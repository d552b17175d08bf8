#include "bench/json_lines/command_table.h"

#include "bench/json_lines/clock.h"

#include <gtest/gtest.h>

namespace bench {
namespace {

using nlohmann::json;

class Command_table_test : public testing::Test {
 protected:
    Command_table_test() {
        sut.add("add", [this](Arguments& arguments) {
            auto const amount = arguments.number("amount", 0, 100);
            arguments.end();
            sum += amount;
            return json{{"sum", sum}};
        });
        sut.add("nothing", [](Arguments&) { return json(); });
    }

    std::int64_t sum = 0;
    Command_table sut;
};

TEST_F(Command_table_test, A_command_is_carried_out_and_its_details_are_in_the_answer) {
    std::int64_t const before = monotonic_ns();
    json const answer = sut.answer(R"({"do":"add","amount":3})");
    EXPECT_EQ(sum, 3);
    EXPECT_EQ(answer["answer"], "add");
    EXPECT_EQ(answer["ok"], true);
    EXPECT_EQ(answer["sum"], 3);
    EXPECT_GE(answer["t"].get<std::int64_t>(), before);
    EXPECT_LE(answer["t"].get<std::int64_t>(), monotonic_ns());
}

TEST_F(Command_table_test, A_handler_without_details_gets_a_plain_answer) {
    json const answer = sut.answer(R"({"do":"nothing"})");
    EXPECT_EQ(answer["ok"], true);
    EXPECT_EQ(answer.size(), 3U);
}

TEST_F(Command_table_test, An_identity_of_any_type_is_given_back) {
    EXPECT_EQ(sut.answer(R"({"do":"nothing","id":7})")["id"], 7);
    EXPECT_EQ(sut.answer(R"({"do":"nothing","id":["a"]})")["id"], json::array({"a"}));
    EXPECT_EQ(sut.answer(R"({"do":"unknown","id":8})")["id"], 8);
    EXPECT_FALSE(sut.answer(R"({"do":"nothing"})").contains("id"));
}

class Malformed_command_test : public Command_table_test, public testing::WithParamInterface<char const*> {};

TEST_P(Malformed_command_test, A_malformed_command_gets_an_error_and_changes_nothing) {
    json const answer = sut.answer(GetParam());
    EXPECT_EQ(answer["ok"], false);
    EXPECT_FALSE(answer["error"].get<std::string>().empty());
    EXPECT_TRUE(answer.contains("answer"));
    EXPECT_TRUE(answer.contains("t"));
    EXPECT_EQ(sum, 0);
}

INSTANTIATE_TEST_SUITE_P(Lines, Malformed_command_test,
                         testing::Values("", "nonsense", "{", "[]", "7", "null", R"("add")", "{}", R"({"do":7})",
                                         R"({"do":"unknown"})", R"({"do":"add"})", R"({"do":"add","amount":"3"})",
                                         R"({"do":"add","amount":101})", R"({"do":"add","amount":3,"amuont":4})",
                                         R"({"do":"add","amount":3} trailing)", "\xff\xfe{\"do\":\"add\"}"));

}  // namespace
}  // namespace bench
