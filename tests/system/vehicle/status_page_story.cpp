// What the daemon lets others see of itself while it lives, and what ap_statectl makes of it.

#include "status_machine.h"

#include <cmath>
#include <fstream>
#include <memory>

namespace bench::vehicle {
namespace {

using nlohmann::json;
using test_support::Test_client;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(Status_page, Tells_state_cause_word_and_the_oldest_command) {
    start_and_run();
    auto const page = told_when("status", [](json const& now) { return now.at("word").at("text") == "running"; });
    EXPECT_EQ(page.at("state"), "Running");
    EXPECT_EQ(page.at("running"), true);
    EXPECT_EQ(page.at("cause").at("row"), 2);
    EXPECT_EQ(page.at("cause").at("text"), "the network manager's services were found (row 2 of Starting up)");
    EXPECT_EQ(page.at("commands"), json::array());
    machine->press("s");
    ASSERT_TRUE(is_in("NM Controlled"));
    auto const then = told("status");
    EXPECT_EQ(then.at("cause").at("command"), "NMControlledPrepareSD");
    EXPECT_EQ(then.at("configuration"), "/etc/adaptive/ap_statemanager.json");
    std::uint64_t digest = 0xcbf29ce484222325U;
    for (char const byte : options.configuration) {
        digest = (digest ^ static_cast<std::uint8_t>(byte)) * 0x100000001b3U;
    }
    EXPECT_EQ(std::stoull(then.at("configuration_digest").get<std::string>(), nullptr, 16), digest);
}

TEST_F(Status_page, Says_a_farewell_where_there_is_one) {
    start_and_run();
    machine->press("r");
    machine->press("power");
    ASSERT_TRUE(ends_with(0));
    EXPECT_THAT(why("key-cleared"), StartsWith("\"Run\" was thrown away"));
    EXPECT_EQ(told("status").at("state"), "Shutting down");
    EXPECT_THAT(why("not-running"), HasSubstr("ended in order"));
    EXPECT_THAT(why("power-off"), HasSubstr("execution management was asked"));
}

TEST_F(Status_page, Says_why_it_stays_in_starting_up) {
    options.with_network = false;
    start();
    ASSERT_TRUE(is_in("Starting up"));
    EXPECT_THAT(why("no-network-manager"), HasSubstr("have not been found"));
}

TEST_F(Status_page, Says_why_it_did_not_take_a_key) {
    start_and_run();
    machine->press("r");
    machine->press("p");
    EXPECT_THAT(why("command-blocked"), StartsWith("the oldest command is \"Run\""));
    told_when("status", [](json const& page) { return page.at("commands").size() == 2; });
    EXPECT_THAT(why("command-blocked"), HasSubstr("which Running never takes; 1 command waits behind it"));
    machine->press("p");
    EXPECT_THAT(why("key-dropped"), HasSubstr("\"PrepareSD\""));
}

TEST_F(Status_page, Says_which_key_a_transition_used_up) {
    settings()["KnockOutTimer"] = 100'000;
    settings()["DefautNMRequestPattern"] = {0, 0, 1, 0, 0, 0};
    Story::start_and_run();
    request("1", com_alive("02"));
    request("2", k_ecu_alive);
    machine->press("n");
    ASSERT_TRUE(is_in("NM Controlled"));
    machine->press("s");
    EXPECT_THAT(why("command-blocked"), HasSubstr("which NM Controlled never takes"));
    release("1", com_alive("02"));
    EXPECT_THAT(why("key-swallowed"),
                testing::AllOf(StartsWith("\"NMControlledPrepareSD\" was used up "),
                               HasSubstr("the transition out of NM Controlled, which had another cause: the network "
                                         "was asleep, and applications kept the ECU alive")));
    EXPECT_EQ(told("status").at("commands"), json::array());
    EXPECT_EQ(told("status").at("input").at("swallowed"), 1);
}

TEST_F(Status_page, Says_which_setting_keeps_a_command_waiting) {
    settings()["StateManagerNMUsage"] = false;
    Story::start_and_run();
    machine->press("n");
    EXPECT_THAT(why("command-blocked"), HasSubstr("while network management is not used"));
}

TEST_F(Status_page, Says_who_keeps_the_machine_from_sleeping) {
    start_and_run();
    request("1", com_alive("02", 3));
    request("2", k_ecu_alive);
    machine->press("s");
    ASSERT_TRUE(is_in("nm-controlled"));
    EXPECT_THAT(why("network-needed"), HasSubstr("CAB 1"));
    auto const holds = told("holds").at("holds");
    EXPECT_THAT(holds, Contains(testing::ResultOf(
                           [](json const& hold) {
                               return hold.at("instance") == "1" && hold.at("hold") == "COM alive" &&
                                      hold.at("held") == true && hold.at("cab") == "02" && hold.at("ac") == 3;
                           },
                           true)));
    EXPECT_THAT(why("held"), HasSubstr("\"2\" holds ECU alive since"));
}

TEST_F(Status_page, Says_how_long_applications_may_still_keep_the_ecu_alive) {
    settings()["KnockOutTimer"] = 100'000;
    settings()["DefautNMRequestPattern"] = {0, 0, 1, 0, 0, 0};  // its release lets the ECU's own bit go as well
    Story::start_and_run();
    request("2", k_ecu_alive);
    machine->press("n");
    ASSERT_TRUE(is_in("post run"));
    EXPECT_THAT(why("knock-out"), HasSubstr("cycles more"));
    EXPECT_THAT(why("held"), HasSubstr("\"2\" holds ECU alive"));
    release("2", k_ecu_alive);
    ASSERT_TRUE(ends_with(0));
    auto const text = statectl({"status"}).output;
    EXPECT_THAT(text, StartsWith("Not running  the daemon ended in order "));
    EXPECT_THAT(text, HasSubstr("Because      nobody kept the ECU alive (row 3 of Post Run)"));
}

TEST_F(Status_page, Tells_that_the_knock_out_time_was_over) {
    settings()["KnockOutTimer"] = 1;
    settings()["DefautNMRequestPattern"] = {0, 0, 1, 0, 0, 0};
    Story::start_and_run();
    request("2", k_ecu_alive);
    machine->press("n");
    ASSERT_TRUE(ends_with(0));
    EXPECT_THAT(statectl({"status"}).output, HasSubstr("Because      the knock-out time was over (row 3 of Post Run)"));
}

TEST_F(Status_page, Says_for_whom_a_suspend_waits_and_how_he_answers) {
    start_and_run();
    auto radio = client("radio");
    auto namesake = client("radio");
    machine->press("p");
    auto const asked = radio.receive();
    EXPECT_THAT(why("client-open"),
                testing::AllOf(StartsWith("\"radio\" (process "), HasSubstr(" left to answer kPrepSD"),
                               HasSubstr("was never asked before")));
    EXPECT_EQ(told("status").at("request").at("unanswered"), 2);
    radio.answer(asked.number, asked.state);
    namesake.obey();
    ASSERT_TRUE(is_in("PreparedSD"));
    machine->press("r");
    radio.receive();
    EXPECT_THAT(why("client-open"), HasSubstr("; of 2 answers before, 2 came in time, after "));
    auto const names = told("clients").at("names");
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names[0].at("asked"), 4);
    EXPECT_EQ(names[0].at("in_time"), 2);
    auto const mean_ms = std::llround(names[0].at("mean_s").get<double>() * 1e9) / 1'000'000;
    EXPECT_THAT(statectl({"clients"}).output,
                HasSubstr(mean_ms < 1'000 ? "  " + std::to_string(mean_ms) + " ms" : " s\n"));
}

TEST_F(Status_page, Tells_a_client_that_answers_late) {
    settings()["ApplicationSuspendRequestTimeout"] = 1;
    start_and_run();
    Child_process late({VEHICLE_BUILD "/tools/ap_statectl", "wait", "--event", "client-late", "--for", "20"}, {});
    auto radio = client("radio");
    machine->press("p");
    auto const asked = radio.receive();
    ASSERT_TRUE(is_in("PreparedSD"));
    radio.answer(asked.number, asked.state);
    EXPECT_EQ(late.wait(std::chrono::seconds(20)), 0);
    auto const names = told("clients").at("names");
    ASSERT_EQ(names.size(), 1U);
    auto const& name = names[0];
    EXPECT_EQ(name.at("late"), 1) << name;
    EXPECT_EQ(name.at("timed_out"), 1) << name;
    EXPECT_EQ(name.at("in_time"), 0) << name;
}

TEST_F(Status_page, Tells_whose_a_client_is_and_marks_one_that_bears_anothers_name) {
    start_and_run();
    auto const radio = client("radio");
    auto const second = client("car radio");
    std::ofstream("/tmp/owners") << "# name user\nradio root\ncar radio nobody\n";
    auto const page = told("clients", {"--owners", "/tmp/owners"});
    for (auto const& client : page.at("clients")) {
        EXPECT_EQ(client.at("user"), "root");
        EXPECT_EQ(client.at("pid"), ::getpid());
        EXPECT_EQ(client.at("should_be"), client.at("name") == "radio" ? json() : json("nobody"));
    }
    EXPECT_THAT(statectl({"clients", "--owners", "/tmp/owners"}).output, HasSubstr("root (not nobody!)"));
}

TEST_F(Status_page, Tells_a_client_that_left_without_an_answer) {
    start_and_run();
    auto radio = std::make_unique<Test_client>(client("radio"));
    machine->press("p");
    radio->receive();
    radio.reset();
    EXPECT_THAT(why("client-vanished"), HasSubstr("1 of those that were asked left without an answer"));
    auto const names = told("clients").at("names");
    ASSERT_EQ(names.size(), 1U);
    auto const& name = names[0];
    EXPECT_EQ(name.at("vanished"), 1) << name;
    EXPECT_EQ(name.at("connections"), 0) << name;
}

TEST_F(Status_page, Says_what_is_wrong) {
    options.devices = 2;
    build();
    tell_node({{"do", "reaction"}, {"method", "RequestNetwork"}, {"refuse", true}, {"count", 1}});
    machine->service_manager().command({{"do", "reaction"},
                                        {"error", "org.freedesktop.systemd1.NoSuchUnit"},
                                        {"unit", "MachineState-Running.target"}});
    Story::start_and_run();
    EXPECT_THAT(why("machine-state-failed"), HasSubstr("Running"));
    EXPECT_THAT(why("calls-failed"), HasSubstr("network management failed: RequestNetwork once"));
    machine->hypervisor().command({{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"errno", "EIO"}});
    machine->press("n");
    EXPECT_THAT(why("word-failed"), HasSubstr("runnmcontrolled"));
    machine->hypervisor().command({{"do", "hang_up"}, {"device", "event0"}});
    EXPECT_THAT(why("device-lost"), StartsWith("1 of 2 input devices failed"));
    machine->hypervisor().command({{"do", "hang_up"}, {"device", "event1"}});
    EXPECT_THAT(why("no-device"), HasSubstr("no command arrives"));
    machine->signal_daemon(SIGSTOP);
    EXPECT_THAT(why("no-beat"), HasSubstr("waits for a call, or stands still"));
    machine->signal_daemon(SIGCONT);
}

TEST_F(Status_page, Counts_the_restarts_that_diagnostics_ask_for) {
    start_and_run();
    restart(5);
    restart(3);
    restart(77);
    auto const restarts = told("status").at("restarts");
    EXPECT_EQ(restarts.at("by_type"), json({1, 0, 0, 1, 0, 1})) << restarts;
    EXPECT_EQ(restarts.at("last_type"), 77);
    EXPECT_THAT(statectl({"status"}).output, HasSubstr("3 asked for by diagnostics"));
}

}  // namespace
}  // namespace bench::vehicle
