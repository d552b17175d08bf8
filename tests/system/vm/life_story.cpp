#include "target.h"

namespace bench::vm {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

class Boot : public Target {
 protected:
    void SetUp() override { switch_off(); }
};

class Life : public Target {};

TEST_F(Boot, Ends_in_the_machine_state_running) {
    machine().start_daemon();
    ASSERT_TRUE(shows("startingup"));
    ASSERT_TRUE(shows("running"));
    EXPECT_TRUE(sees(Kind::notification, "READY"));
    EXPECT_TRUE(sees(Kind::machine_state, "Running"));
    EXPECT_TRUE(logs("AP_StateManger transition from Starting up  to  Running"));
    EXPECT_EQ(output_of("systemctl is-active MachineState-Running.target"), "active");
    EXPECT_EQ(output_of("systemctl is-active MachineState-Startup.target"), "inactive");
}

TEST_F(Life, Is_that_of_a_user_with_the_input_group_and_without_capabilities) {
    auto const status = output_of("cat /proc/" + property("MainPID") + "/status");
    EXPECT_THAT(status, HasSubstr("CapEff:\t0000000000000000"));
    EXPECT_THAT(status, HasSubstr("CapBnd:\t0000000000000000"));
    EXPECT_THAT(status, HasSubstr("NoNewPrivs:\t1"));
    auto const user = output_of("id -u ap-statemanager");
    auto const group = output_of("id -g ap-statemanager");
    auto const input = output_of("sed -n 's/^input:[^:]*:\\([0-9]*\\):.*/\\1/p' /etc/group");
    EXPECT_THAT(status, HasSubstr("Uid:\t" + user + "\t" + user));
    EXPECT_THAT(status, HasSubstr("Gid:\t" + group + "\t" + group));
    EXPECT_THAT(status, AnyOf(HasSubstr("Groups:\t" + input + " " + group + " \n"),
                              HasSubstr("Groups:\t" + group + " " + input + " \n")));
}

TEST_F(Life, Goes_through_suspend_and_resume_by_keys) {
    machine().press("p");
    ASSERT_TRUE(shows("preparing"));
    ASSERT_TRUE(shows("prepared4sd"));
    EXPECT_TRUE(logs("AP_StateManger transition from Preparing  to  PreparedSD"));
    mark();
    machine().press("r");
    ASSERT_TRUE(shows("resuming"));
    ASSERT_TRUE(shows("running"));
    EXPECT_TRUE(logs("AP_StateManger transition from Resuming  to  Running"));
}

TEST_F(Life, Goes_on_after_an_orderly_stop_and_a_start) {
    ASSERT_EQ(machine().shell().run("systemctl stop ap_statemanager.service").status, 0);
    EXPECT_EQ(property("Result"), "success");
    EXPECT_EQ(property("ExecMainStatus"), "0");
    mark();
    machine().start_daemon();
    ASSERT_TRUE(shows("startingup"));
    EXPECT_TRUE(shows("running"));
}

}  // namespace
}  // namespace bench::vm
