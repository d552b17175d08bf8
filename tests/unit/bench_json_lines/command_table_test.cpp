#include "bench/json_lines/command_table.h"

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
    }

    std::int64_t sum{0};
    Command_table sut;
};

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
