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

TEST_F(Commands_test, A_unit_is_refused_once) {
    EXPECT_EQ(sut({{"do", "reaction"}, {"unit", "a.target"}, {"error", "org.freedesktop.systemd1.NoSuchUnit"}})["ok"],
              true);
    EXPECT_EQ(manager.plan().take("StartUnit", "a.target").error, "org.freedesktop.systemd1.NoSuchUnit");
    EXPECT_EQ(manager.plan().take("StartUnit", "a.target").error, "");
}

TEST_F(Commands_test, Answers_and_jobs_are_delayed_withheld_and_failed) {
    sut({{"do", "reaction"},
         {"method", "GetUnit"},
         {"silent", true},
         {"delay_ms", 5},
         {"job_delay_ms", 6},
         {"job_result", "failed"},
         {"count", 2}});
    manager.plan().take("GetUnit", "any");
    Reaction const reaction = manager.plan().take("GetUnit", "any");
    EXPECT_TRUE(reaction.silent);
    EXPECT_EQ(reaction.delay.count(), 5);
    EXPECT_EQ(reaction.job_delay.count(), 6);
    EXPECT_EQ(reaction.job_result, "failed");
}

TEST_F(Commands_test, Reactions_can_be_taken_back) {
    sut({{"do", "reaction"}, {"silent", true}});
    EXPECT_EQ(sut({{"do", "clear_reactions"}})["ok"], true);
    EXPECT_FALSE(manager.plan().take("StartUnit", "a").silent);
}

TEST_F(Commands_test, A_unit_is_put_into_a_state_or_added) {
    sut({{"do", "set_unit"}, {"unit", "MachineState-Running.target"}, {"active", "active"}});
    sut({{"do", "set_unit"}, {"unit", "new.service"}, {"active", "failed"}});
    EXPECT_EQ(manager.units().find("MachineState-Running.target")->active, "active");
    EXPECT_EQ(manager.units().find("new.service")->active, "failed");
}

TEST_F(Commands_test, The_list_shows_units_and_reports) {
    manager.reports().count({7, 1, {{"WATCHDOG", "1"}, {"READY", "1"}}});
    json const answer = sut({{"do", "list"}});
    EXPECT_EQ(answer["units"],
              json::array({{{"unit", "MachineState-Running.target"}, {"active", "inactive"}, {"loaded", false}}}));
    EXPECT_EQ(answer["ready"], 1);
    EXPECT_EQ(answer["stopping"], 0);
    EXPECT_EQ(answer["watchdog"], 1);
    EXPECT_EQ(answer["last_watchdog"], 7);
}

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
