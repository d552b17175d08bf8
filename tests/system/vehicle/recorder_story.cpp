// What outlives the machine: the recorder beside the daemon, and what ap_statectl tells of its files afterwards.

#include "network_machine.h"
#include "status/layout.h"
#include "support/temporary_directory.h"
#include "support/test_client.h"
#include "tool.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>

#include <sys/mount.h>

namespace bench::vehicle {
namespace {

using nlohmann::json;
using test_support::Test_client;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Recorder_story : public Network_story {
 protected:
    Recorder_story() {
        options.clients.clear();
        settings()["ApplicationSuspendRequestTimeout"] = 1;
    }

    void TearDown() override {
        if (recorder) {
            stop_recorder();
        }
        finish();
        std::filesystem::remove_all("/run/adaptive/status");
        std::filesystem::remove_all("/run/adaptive/ara_SM");
    }

    /// Its words come to its standard output, which is read.
    void start_recorder_that_is_heard() {
        recorder = std::make_unique<Companion>(std::vector<std::string>{
            "/bin/sh", "-c",
            "exec " VEHICLE_BUILD "/tools/ap_statemanager_recorder --directory " + records() + " 2>&1"});
    }

    void start_recorder() {
        recorder = std::make_unique<Companion>(std::vector<std::string>{
            VEHICLE_BUILD "/tools/ap_statemanager_recorder", "--directory", records(), "--watchdog", watchdog});
    }
    void stop_recorder() {
        EXPECT_EQ(recorder->end(), 0);
        recorder.reset();
    }
    /// Until the recorder has seen the machine there.
    void await_recorded(std::string const& state) {
        told_when("history", [&](json const& history) {
            return history.at("cycles").back().at("end_word") == "running" &&
                   history.at("cycles").back().at("state") == state;
        });
    }
    void kill_daemon() {
        machine->signal_daemon(SIGKILL);
        machine->await_end();
    }
    /// By which `pgrep -x` and the like know it: not as the daemon.
    std::string name_of_recorder() const {
        std::string name;
        std::getline(std::ifstream("/proc/" + std::to_string(recorder->program.pid()) + "/comm"), name);
        return name;
    }
    void kill_recorder() {
        recorder->program.expect(128 + SIGKILL);
        recorder->program.signal(SIGKILL);
        recorder->program.wait(std::chrono::seconds(20));
        recorder.reset();
    }

    Test_client client(std::string const& name) {
        Test_client connected{utilities::get_socket_path(), name, "kOn"};
        auto const end = std::chrono::steady_clock::now() + Machine::k_patience;
        while (statectl({"clients"}).output.find(name) == std::string::npos && std::chrono::steady_clock::now() < end) {
            machine->watch(std::chrono::milliseconds(20));
        }
        return connected;
    }

    /// As if the machine had been started anew since: what is recorded is that of another boot, and the page is gone.
    void move_to_another_boot() const {
        std::filesystem::remove_all("/run/adaptive/status");
        std::string boot;
        std::getline(std::ifstream("/proc/sys/kernel/random/boot_id"), boot);
        auto const name = records() + "/record.000001.jsonl";
        std::ifstream file(name);
        std::string text{std::istreambuf_iterator<char>(file), {}};
        for (auto place = text.find(boot); place != std::string::npos; place = text.find(boot, place)) {
            text.replace(place, boot.size(), std::string(boot.size(), 'b'));
        }
        std::ofstream(name) << text;
    }

    std::string records() const { return directory.path(); }

    Outcome told(std::string const& subcommand, std::vector<std::string> const& more = {}) const {
        std::vector<std::string> words{subcommand, "--directory", records()};
        words.insert(words.end(), more.begin(), more.end());
        return statectl(words);
    }

    /// What a subcommand tells as soon as it is so.
    json told_when(std::string const& subcommand, std::function<bool(json const&)> const& is_so) {
        auto const end = std::chrono::steady_clock::now() + Machine::k_patience;
        for (;;) {
            auto const object = json::parse(told(subcommand, {"--json"}).output, nullptr, false);
            if (object.is_object() && is_so(object)) {
                return object;
            }
            if (std::chrono::steady_clock::now() > end) {
                ADD_FAILURE() << object.dump(2);
                return json::object();
            }
            machine->watch(std::chrono::milliseconds(50));
        }
    }

    json last_that_ended(std::string const& how) {
        return told_when("last", [&](json const& cycle) { return cycle.value("end_word", "") == how; });
    }

    std::vector<std::string> ends() const {
        std::vector<std::string> words;
        auto const history = json::parse(told("history", {"--json"}).output);
        for (auto const& cycle : history.at("cycles")) {
            words.push_back(cycle.at("end_word").get<std::string>() + " in " + cycle.at("state").get<std::string>());
        }
        return words;
    }

    static json answer_of(std::string const& client, json const& sequence) {
        for (auto const& group : sequence.at("groups")) {
            for (auto const& answer : group.at("answers")) {
                if (answer.at("client") == client && answer.contains("seconds")) {
                    return answer;
                }
            }
        }
        return json::object();
    }

    bool is_in(std::string const& state) { return statectl({"wait", state, "--for", "20"}).status == 0; }

    test_support::Temporary_directory directory;
    std::unique_ptr<Companion> recorder;
    std::string watchdog{"20"};
};

TEST_F(Recorder_story, Tells_that_the_daemon_was_killed_what_was_held_and_what_diagnostics_had_asked_for) {
    build();
    start_recorder();
    start_and_run();
    request("2", k_ecu_alive);
    restart(5);
    machine->press("n");
    await_recorded("NM Controlled");
    EXPECT_EQ(name_of_recorder(), "ap_sm_recorder");
    kill_daemon();
    auto const cycle = last_that_ended("killed");
    EXPECT_EQ(cycle.value("state", ""), "NM Controlled");
    EXPECT_EQ(cycle.at("holds").at(0).at("who"), "2") << cycle;
    EXPECT_EQ(cycle.at("missed"), 0) << cycle;
    auto const text = told("last").output;
    EXPECT_THAT(text, HasSubstr("killed in NM Controlled (no farewell"));
    EXPECT_THAT(text, HasSubstr("2 held ECU alive, and did not release it"));
    EXPECT_THAT(text, HasSubstr("diagnostics asked for a restart: the co-processor (M3)"));
}

TEST_F(Recorder_story, Names_each_end_of_a_power_cycle_over_many_lives) {
    watchdog = "5";
    build();
    start_recorder();
    start_and_run();
    machine->press("p");
    ASSERT_TRUE(is_in("PreparedSD"));
    machine->press("r");
    ASSERT_TRUE(is_in("Running"));
    await_recorded("Running");
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    last_that_ended("signal");
    machine->start_daemon();
    await_recorded("Running");
    machine->signal_daemon(SIGSTOP);
    machine->watch(std::chrono::seconds(6));
    kill_daemon();
    last_that_ended("watchdog");
    machine->start_daemon();
    await_recorded("Running");
    machine->press("power");
    ASSERT_TRUE(ends_with(0));
    last_that_ended("normal");
    EXPECT_THAT(ends(), ElementsAre("suspended in PreparedSD", "signal in Running", "watchdog in Running",
                                    "normal in Shutting down"));
}

TEST_F(Recorder_story, Tells_a_suspend_that_was_turned_back_and_one_in_which_the_machine_is_switched_off) {
    settings()["ApplicationSuspendRequestTimeout"] = 60;
    build();
    start_recorder();
    start_and_run();
    auto radio = client("radio");
    machine->press("p");
    auto const request = radio.receive();
    machine->press("r");
    ASSERT_TRUE(sees(Kind::state_word, "resuming"));
    radio.answer(request.number, request.state);
    EXPECT_EQ(radio.obey().state, "kOn");
    ASSERT_TRUE(is_in("Running"));
    machine->press("p");
    EXPECT_EQ(radio.obey().state, "kPrepSD");
    ASSERT_TRUE(is_in("PreparedSD"));
    machine->press("power");
    ASSERT_TRUE(sees(Kind::power_off, "poweroff 60000"));
    kill_daemon();
    EXPECT_EQ(last_that_ended("fast").value("state", ""), "Shutting down");
    EXPECT_THAT(ends(), ElementsAre("resumed in Preparing", "fast in Shutting down"));
}

TEST_F(Recorder_story, Tells_a_machine_that_went_down_under_daemon_and_recorder) {
    build();
    start_recorder();
    start_and_run();
    await_recorded("Running");
    kill_recorder();
    kill_daemon();
    move_to_another_boot();
    EXPECT_THAT(told("last").output, HasSubstr("went down in Running (no farewell; the machine was started anew"));
    start_recorder();
    machine->start_daemon();
    await_recorded("Running");
    EXPECT_THAT(ends(), ElementsAre("went down in Running", "running in Running"));
}

TEST_F(Recorder_story, Tells_lives_that_came_and_went_between_two_looks) {
    build();
    start_recorder();
    start_and_run();
    await_recorded("Running");
    recorder->program.signal(SIGSTOP);
    for (int life = 0; life < 3; ++life) {
        kill_daemon();
        machine->start_daemon();
        ASSERT_TRUE(is_in("Running"));
    }
    recorder->program.signal(SIGCONT);
    auto const history =
        told_when("history", [](json const& told) { return told.at("cycles").back().at("end_word") == "running"; });
    EXPECT_THAT(ends(), ElementsAre(HasSubstr(" in Running"), HasSubstr(" in Running"), "running in Running"));
    EXPECT_EQ(history.at("cycles").at(1).at("missed"), 1) << "the second life, whose page is gone: " << history;
    EXPECT_EQ(history.at("cycles").back().at("missed"), 0) << history;
}

/// A small disk on which a file leaves room for a few lines.
class Full_disk {
 public:
    explicit Full_disk(std::string const& place) : place_(place) {
        EXPECT_EQ(::mount("none", place.c_str(), "tmpfs", 0, "size=64k"), 0) << std::strerror(errno);
        std::ofstream(filler()) << std::string(60 * 1024, '.');
    }
    ~Full_disk() { ::umount2(place_.c_str(), MNT_DETACH); }
    Full_disk(Full_disk const&) = delete;
    Full_disk& operator=(Full_disk const&) = delete;

    void make_room() const { std::filesystem::remove(filler()); }

 private:
    std::string filler() const { return place_ + "/filler"; }

    std::string const place_;
};

TEST_F(Recorder_story, Lacks_nothing_of_the_time_in_which_its_disk_was_full) {
    Full_disk const disk(records());
    build();
    start_recorder_that_is_heard();
    start_and_run();
    std::size_t suspends = 0;
    while (!recorder->says("No space left on device", std::chrono::milliseconds(0)) && suspends < 20) {
        machine->press("p");
        ASSERT_TRUE(is_in("PreparedSD"));
        machine->press("r");
        ASSERT_TRUE(is_in("Running"));
        ++suspends;
    }
    EXPECT_THAT(recorder->said, HasSubstr(records() + ": nothing can be written: No space left on device"));
    disk.make_room();
    EXPECT_TRUE(recorder->says("all is well again", Machine::k_patience)) << recorder->said;
    json history;
    told_when("history", [&](json const& /*newest*/) {
        history = json::parse(told("history", {"--json", "-n", "100"}).output);
        auto const& cycles = history.at("cycles");
        return cycles.size() == suspends + 1 && cycles.back().at("state") == "Running";
    });
    for (auto const& cycle : history.at("cycles")) {
        EXPECT_EQ(cycle.at("missed"), 0) << cycle;
    }
    stop_recorder();
}

TEST_F(Recorder_story, Names_who_has_not_answered_yet_while_a_suspend_still_waits) {
    settings()["ApplicationSuspendRequestTimeout"] = 60;
    build();
    start_recorder();
    start_and_run();
    auto radio = client("radio");
    auto navigation = client("navigation");
    machine->press("p");
    navigation.obey();
    auto const request = radio.receive();
    auto const waits =
        told_when("blame", [](json const& sequence) { return !answer_of("navigation", sequence).empty(); });
    EXPECT_THAT(waits.dump(), HasSubstr(R"({"client":"radio","status":"not yet"})"));
    EXPECT_THAT(told("blame").output,
                AllOf(HasSubstr("\"navigation\"\n"), HasSubstr("\"radio\": has not answered yet\n")));
    radio.answer(request.number, request.state);
    ASSERT_TRUE(is_in("PreparedSD"));
    await_recorded("PreparedSD");
    EXPECT_THAT(told("blame").output, AllOf(HasSubstr("\"radio\"\n"), Not(HasSubstr("not answered yet"))));
}

TEST_F(Recorder_story, Blames_a_client_that_was_late_and_tells_by_how_much) {
    settings()["ApplicationSuspendRequestTimeout"] = 2;
    build();
    start_recorder();
    start_and_run();
    auto radio = client("radio");
    auto navigation = client("navigation");
    machine->press("p");
    navigation.obey();
    auto const request = radio.receive();
    await_recorded("PreparedSD");
    EXPECT_THAT(told("blame").output, HasSubstr("\"radio\": timed out, and has not answered since\n"));
    radio.answer(request.number, request.state);
    auto const blame = told_when(
        "blame", [](json const& sequence) { return answer_of("radio", sequence).value("seconds", 0.0) >= 2; });
    EXPECT_EQ(answer_of("radio", blame).value("status", ""), "timed out") << "it was given two seconds: " << blame;
    EXPECT_EQ(answer_of("navigation", blame).value("status", ""), "succeeded") << blame;
    EXPECT_THAT(told("blame").output, HasSubstr("\"radio\": timed out, and answered then\n"));
    EXPECT_THAT(told("offenders").output, HasSubstr("radio did not answer in time, 1 of 1 times"));
}

}  // namespace
}  // namespace bench::vehicle
