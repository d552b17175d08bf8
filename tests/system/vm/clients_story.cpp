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
    bool says(std::string const& name, std::string const& words) { return line_with(name, words) != nullptr; }

    /// Each of them was asked for the state, the one after the other. They tell when: lines of several units may come
    /// into the journal in another order.
    void expect_asked(std::string const& state, std::vector<std::string> const& names) {
        std::int64_t last = 0;
        for (auto const& name : names) {
            auto const* const line = line_with(name, R"("state":")" + state + '"');
            ASSERT_NE(line, nullptr) << name << " was not asked for " << state;
            auto const message = nlohmann::json::parse(line->message);
            EXPECT_EQ(message.at("event"), "request") << line->message;
            EXPECT_LT(last, message.at("t").get<std::int64_t>()) << name << " was asked too early for " << state;
            last = message.at("t").get<std::int64_t>();
        }
    }
    void listen() { first_ = machine().journal().size(); }

 private:
    Entry const* line_with(std::string const& name, std::string const& words) const {
        return machine().await_entry("vehicle-client@" + name + ".service", words, first_, k_patience);
    }

    std::size_t first_{0};
};

TEST_F(Clients, Are_asked_before_a_suspend_in_their_order_and_after_it_in_the_opposite_one) {
    machine().press("p");
    ASSERT_TRUE(shows("prepared4sd"));
    expect_asked("kPrepSD", {"diag::dcm", "application", "diag::dem"});

    listen();
    mark();
    machine().press("r");
    ASSERT_TRUE(shows("resuming"));
    ASSERT_TRUE(shows("running"));
    expect_asked("kOn", {"diag::dem", "application", "diag::dcm"});
}

TEST_F(Clients, Connect_again_to_a_daemon_that_was_killed) {
    listen();
    machine().signal_daemon(SIGKILL);
    ASSERT_TRUE(ends_by("code=killed, status=9/KILL"));
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
