#include "target.h"

namespace bench::vm {
namespace {

/// The machine with a network manager, another node on the network, and a daemon that follows it.
class Machine_network : public Target {
 protected:
    void SetUp() override {
        Target::SetUp();
        configure("with-network");
        machine().shell().run("systemctl restart vehicle-network-manager.service vehicle-network-neighbour.service");
        others_need_network(true);
        start_the_daemon_again();
        ASSERT_TRUE(shows("running"));
        ASSERT_TRUE(manager_holds(k_default_pattern, k_user_data));
        mark();
    }
    void TearDown() override {
        Target::TearDown();
        if (machine().is_on()) {
            machine().shell().run("systemctl stop vehicle-network-manager.service vehicle-network-neighbour.service");
            configure("without-network");
            needs_new_daemon();
        }
    }

    static void others_need_network(bool needed) {
        machine().tell("other node", {{"do", needed ? "request" : "release"}, {"bits", "80"}});
    }
    static bool application(std::string const& words) {
        return machine().shell().run("ap_statectl " + words + " --wait 30000").status == 0;
    }

 private:
    static void configure(std::string const& name) {
        machine().shell().run("cp /etc/vehicle/" + name + ".json /etc/adaptive/ap_statemanager.json");
    }
};

TEST_F(Machine_network, Keeps_the_machine_awake_and_lets_it_suspend) {
    machine().press("s");
    ASSERT_TRUE(shows("runnmcontrolled"));
    others_need_network(false);
    ASSERT_TRUE(shows("preparing"));
    ASSERT_TRUE(shows("prepared4sd"));
    mark();
    machine().press("r");
    ASSERT_TRUE(shows("resuming"));
    EXPECT_TRUE(shows("running"));
}

TEST_F(Machine_network, Sleeps_while_an_application_keeps_the_machine_for_some_time) {
    ASSERT_TRUE(application("ecu-alive request 2"));
    machine().press("s");
    ASSERT_TRUE(shows("runnmcontrolled"));
    others_need_network(false);
    ASSERT_TRUE(shows("postrun"));
    ASSERT_TRUE(application("ecu-alive release 2"));
    EXPECT_TRUE(shows("prepared4sd"));
}

TEST_F(Machine_network, May_lose_its_manager_and_find_it_again) {
    auto const daemon = property("MainPID");
    machine().shell().run("systemctl kill --signal=KILL vehicle-network-manager.service");
    ASSERT_TRUE(comes_true("test \"$(systemctl show --value -p NRestarts vehicle-network-manager.service)\" = 1"));
    others_need_network(false);
    others_need_network(true);
    EXPECT_TRUE(logs("We received the notification that network was updated:  80 00 00 00 00 00")) << "of the new one";
    EXPECT_EQ(property("MainPID"), daemon);
    machine().press("p");
    EXPECT_TRUE(shows("prepared4sd"));
}

TEST_F(Machine_network, Lets_the_machine_power_off_when_it_sleeps) {
    machine().press("n");
    ASSERT_TRUE(shows("runnmcontrolled"));
    others_need_network(false);
    ASSERT_TRUE(shows("shuttingdown"));
    EXPECT_TRUE(machine().await_power_off(k_patience));
}

}  // namespace
}  // namespace bench::vm
