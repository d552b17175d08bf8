// Suspend, resume and what clients make of them, with real clients around the real daemon.
#include "story.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class Suspend : public Story {
 protected:
    Suspend() {
        settings()["ApplicationSuspendRequestTimeout"] = 1;
        settings()["DMSuspendRequestTimeout"] = 1;
    }

    void start_with_clients() {
        start_and_run();
        for (auto const& client : options.clients) {
            ASSERT_TRUE(sees(Kind::client, client + " connected kOn")) << client;
        }
    }

    void tell(std::string const& client, std::string const& manner) {
        machine->tell(client, {{"do", "behave"}, {"as", manner}});
    }

    void suspend() {
        machine->press("p");
        ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
    }

    void resume() {
        auto const from = machine->events().size();
        machine->press("r");
        ASSERT_TRUE(machine->await(Kind::state_word, "running", from));
    }

    std::vector<std::string> told_by_clients(std::size_t from) const {
        std::vector<std::string> result;
        auto const& events = machine->events();
        for (auto event = from; event < events.size(); ++event) {
            if (events[event].kind == Kind::client) {
                result.push_back(events[event].text);
            }
        }
        return result;
    }
};

TEST_F(Suspend, Asks_diagnostics_first_and_last_and_applications_between) {
    options.clients = {"diag::dem", "radio", "diag::dcm"};
    start_with_clients();
    auto const from = machine->events().size();
    suspend();
    EXPECT_THAT(told_by_clients(from),
                ElementsAre("diag::dcm asked kPrepSD", "diag::dcm answered kPrepSD 0", "radio asked kPrepSD",
                            "radio answered kPrepSD 0", "diag::dem asked kPrepSD", "diag::dem answered kPrepSD 0"));
}

TEST_F(Suspend, Is_taken_back_in_the_opposite_order) {
    options.clients = {"diag::dem", "radio", "diag::dcm"};
    start_with_clients();
    suspend();
    auto const from = machine->events().size();
    resume();
    EXPECT_THAT(told_by_clients(from),
                ElementsAre("diag::dem asked kOn", "diag::dem answered kOn 0", "radio asked kOn",
                            "radio answered kOn 0", "diag::dcm asked kOn", "diag::dcm answered kOn 0"));
    EXPECT_THAT(texts(Kind::state_word),
                ElementsAre("startingup", "running", "preparing", "prepared4sd", "resuming", "running"));
}

TEST_F(Suspend, Needs_no_clients_and_no_socket_for_them) {
    options.clients.clear();
    std::filesystem::create_directories("/run/adaptive");
    std::filesystem::remove_all("/run/adaptive/ara_SM");  // of the stories before
    std::ofstream("/run/adaptive/ara_SM") << "in the way";
    start_and_run();
    EXPECT_TRUE(logs("Client_states_impl thread crashed: "));
    suspend();
    resume();
    std::filesystem::remove("/run/adaptive/ara_SM");
}

TEST_F(Suspend, Waits_for_a_late_client_and_not_longer) {
    settings()["ApplicationSuspendRequestTimeout"] = 60;
    start_with_clients();
    tell("radio", "silent");
    machine->press("p");
    ASSERT_TRUE(sees(Kind::client, "radio asked kPrepSD"));
    machine->watch(std::chrono::milliseconds(300));
    EXPECT_THAT(texts(Kind::state_word), Not(Contains("prepared4sd")));
    tell("radio", "well");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
}

TEST_F(Suspend, Goes_on_without_a_silent_application_and_names_it) {
    start_with_clients();
    tell("radio", "silent");
    suspend();
    EXPECT_TRUE(logs("State notification client [ radio ] timed out"));
    EXPECT_TRUE(logs("State notification client [ navigation ] succeeded"));
    EXPECT_THAT(texts(Kind::client), Contains("diag::dem answered kPrepSD 0"));
}

TEST_F(Suspend, Goes_on_without_a_client_that_crashes) {
    start_with_clients();
    tell("navigation", "crashing");
    suspend();
    EXPECT_TRUE(sees(Kind::client, "navigation crashed"));
    EXPECT_TRUE(logs("client disconnected:  navigation"));
    tell("navigation", "well");  // it is started again
    EXPECT_TRUE(machine->await(Kind::client, "navigation connected kOn", machine->events().size() - 1));
}

TEST_F(Suspend, Turns_back_at_its_next_step_when_the_machine_is_to_run) {
    options.clients = {"diag::dem", "radio", "diag::dcm"};
    settings()["ApplicationSuspendRequestTimeout"] = 60;
    start_with_clients();
    tell("radio", "silent");
    auto const from = machine->events().size();
    machine->press("p");
    ASSERT_TRUE(sees(Kind::client, "radio asked kPrepSD"));
    machine->press("r");
    ASSERT_TRUE(sees(Kind::state_word, "resuming"));
    tell("radio", "well");
    ASSERT_TRUE(machine->await(Kind::state_word, "running", from));
    EXPECT_THAT(told_by_clients(from),
                ElementsAre("diag::dcm asked kPrepSD", "diag::dcm answered kPrepSD 0", "radio asked kPrepSD",
                            "radio answered kPrepSD 0", "radio asked kOn", "radio answered kOn 0",
                            "diag::dcm asked kOn", "diag::dcm answered kOn 0"))
        << "the event manager has never heard of it";
    EXPECT_THAT(texts(Kind::state_word), ElementsAre("startingup", "running", "preparing", "resuming", "running"));
}

TEST_F(Suspend, Is_forgotten_by_a_daemon_that_is_started_again) {
    start_with_clients();
    suspend();
    machine->signal_daemon(SIGKILL);
    ASSERT_TRUE(sees(Kind::client, "radio disconnected"));
    auto const from = machine->events().size();
    machine->start_daemon();
    EXPECT_TRUE(machine->await(Kind::client, "radio connected kPrepSD", from));
    EXPECT_TRUE(machine->await(Kind::client, "radio answered kOn 0", from)) << "asked at once, since the machine runs";
}

TEST_F(Suspend, Ends_in_a_normal_shutdown_when_the_power_key_comes_while_resuming) {
    settings()["DMSuspendRequestTimeout"] = 60;
    start_with_clients();
    suspend();
    tell("diag::dem", "silent");
    machine->press("r");
    ASSERT_TRUE(sees(Kind::client, "diag::dem asked kOn"));
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::log), Contains("Normal shutdown executed"));
    EXPECT_THAT(texts(Kind::power_off), ElementsAre("lookup vyn_per_daemon"));
}

TEST_F(Suspend, Ends_in_a_fast_shutdown_with_the_power_off_service) {
    start_with_clients();
    suspend();
    machine->press("power");
    ASSERT_TRUE(sees(Kind::power_off, "poweroff 60000"));
    EXPECT_THAT(texts(Kind::power_off), ElementsAre("lookup vyn_per_daemon", "terminate", "poweroff 60000"));
    EXPECT_TRUE(logs("Fast shutdown executed"));
    EXPECT_EQ(machine->await_end(std::chrono::milliseconds(300)), std::nullopt) << "it stays until the machine is off";
    EXPECT_THAT(texts(Kind::log), Not(Contains("Normal shutdown executed")));
}

TEST_F(Suspend, Ends_in_a_normal_shutdown_without_the_power_off_service) {
    options.with_power_off_service = false;
    start_with_clients();
    EXPECT_TRUE(logs("Failed to open file:"));
    suspend();
    EXPECT_TRUE(logs("File descriptor of PowerOFF not valid"));
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::machine_state), ElementsAre("Running", "Shutdown"));
}

TEST_F(Suspend, Is_shown_with_who_owes_an_answer_and_until_when) {
    options.clients = {"radio"};
    start_with_clients();
    tell("radio", "silent");
    machine->press("p");
    auto const asked = machine->await(Kind::client, "radio asked kPrepSD");
    ASSERT_TRUE(asked);
    auto const radio = machine->clients().at(0);
    EXPECT_EQ(radio.manner, "silent");
    EXPECT_EQ(radio.state, "kOn");
    EXPECT_EQ(radio.owed, "kPrepSD");
    EXPECT_EQ(radio.deadline, machine->events()[*asked].time + 1'000'000'000);
}

}  // namespace
}  // namespace bench::vehicle
