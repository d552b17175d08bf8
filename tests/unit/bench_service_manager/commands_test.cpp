#include "bench/service_manager/commands.h"

#include <gtest/gtest.h>

namespace bench::service_manager {
namespace {

using nlohmann::json;

class Commands_test : public testing::Test {
 protected:
    Commands_test() {
        add_commands(table, manager);
        manager.units().add("MachineState-Running.target", "inactive");
    }
    json sut(json const& command) { return table.answer(command.dump()); }

    Manager manager;
    Command_table table;
};

class Wrong_command_test : public Commands_test, public testing::WithParamInterface<char const*> {};

TEST_P(Wrong_command_test, A_wrong_command_gets_an_error_and_changes_nothing) {
    EXPECT_EQ(table.answer(GetParam())["ok"], false);
    EXPECT_EQ(manager.units().all().size(), 1U);
    EXPECT_EQ(manager.units().all().front().active, "inactive");
    Reaction const reaction = manager.plan().take("StartUnit", "MachineState-Running.target");
    EXPECT_TRUE(reaction.error.empty());
    EXPECT_FALSE(reaction.silent);
}

INSTANTIATE_TEST_SUITE_P(Commands, Wrong_command_test,
                         testing::Values(R"({"do":"reaction","error":"nodots"})", R"({"do":"reaction","error":".x"})",
                                         R"({"do":"reaction","error":"a b.c"})", R"({"do":"reaction","error":"a..b"})",
                                         R"({"do":"reaction","silent":1})",
                                         R"({"do":"reaction","silent":true,"delay_ms":-1})",
                                         R"({"do":"reaction","silent":true,"count":0})",
                                         R"({"do":"reaction","silent":true,"sielnt":1})",
                                         R"({"do":"set_unit","unit":"MachineState-Running.target"})",
                                         R"({"do":"set_unit","unit":"MachineState-Running.target","active":"on"})",
                                         R"({"do":"set_unit","active":"active"})", R"({"do":"list","all":true})"));

}  // namespace
}  // namespace bench::service_manager
