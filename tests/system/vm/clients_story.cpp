#include "target.h"

namespace bench::vm {
namespace {

/// Clients of the state manager on the machine, as services of its service manager, each a user of its own.
class Clients : public Target {
 protected:
    void SetUp() override {
        Target::SetUp();
        first_ = machine().journal().size();
        for (auto const* const name : {"diag::dem", "application", "diag::dcm"}) {
            machine().shell().run(std::string("systemctl start vehicle-client@") + name + ".service");
            ASSERT_TRUE(says(name, "\"event\":\"connected\""));
        }
    }
    void TearDown() override {
        Target::TearDown();
        if (machine().is_on()) {
            machine().shell().run("systemctl stop 'vehicle-client@*.service'");
        }
    }

    /// Whether the client prints a line with these words, from the last `listen` on.
    bool says(std::string const& name, std::string const& words) { return time_of(name, words) > 0; }

    /// When it did, by the machine's clock.
    std::int64_t time_of(std::string const& name, std::string const& words) {
        auto const* const entry =
            machine().await_entry("vehicle-client@" + name + ".service", words, first_, k_patience);
        return entry != nullptr ? entry->time : 0;
    }
    void listen() { first_ = machine().journal().size(); }

 private:
    std::size_t first_{0};
};

TEST_F(Clients, Are_asked_before_a_suspend_in_their_order_and_after_it_in_the_opposite_one) {
    machine().press("p");
    ASSERT_TRUE(shows("prepared4sd"));
    auto const* const suspend = "\"state\":\"kPrepSD\"";
    EXPECT_LT(time_of("diag::dcm", suspend), time_of("application", suspend));
    EXPECT_LT(time_of("application", suspend), time_of("diag::dem", suspend));

    listen();
    mark();
    machine().press("r");
    ASSERT_TRUE(shows("resuming"));
    ASSERT_TRUE(shows("running"));
    auto const* const resume = "\"state\":\"kOn\"";
    EXPECT_LT(time_of("diag::dem", resume), time_of("application", resume));
    EXPECT_LT(time_of("application", resume), time_of("diag::dcm", resume));
}

TEST_F(Clients, Connect_again_to_a_daemon_that_was_killed) {
    listen();
    machine().signal_daemon(SIGKILL);
    ASSERT_TRUE(shows("startingup"));
    EXPECT_TRUE(says("application", "\"event\":\"connected\""));
    machine().press("p");
    EXPECT_TRUE(says("application", "\"state\":\"kPrepSD\""));
    EXPECT_TRUE(shows("prepared4sd"));
}

TEST_F(Clients, That_are_in_no_group_are_refused) {
    auto const refused = machine().shell().run(
        "systemd-run --quiet --wait --pipe --property=DynamicUser=yes --property=RuntimeMaxSec=5 ap_statectl client "
        "--name stranger --json");
    EXPECT_THAT(refused.output, testing::HasSubstr("Permission denied"));
    EXPECT_THAT(refused.output, testing::Not(testing::HasSubstr("\"event\":\"connected\"")));
}

TEST_F(Clients, Have_the_hypervisor_restart_the_machine_or_the_microcontroller) {
    ASSERT_EQ(machine().shell().run("ap_statectl restart vm --wait 30000").status, 0);
    EXPECT_TRUE(sees(Kind::restart_word, "restartao"));
    ASSERT_EQ(machine().shell().run("ap_statectl restart m3 --wait 30000").status, 0);
    EXPECT_TRUE(sees(Kind::restart_word, "restartm3"));
}

}  // namespace
}  // namespace bench::vm
