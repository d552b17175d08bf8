// What the daemon lets others see of itself, and what ap_statectl makes of it.

#include "status_machine.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>

#include <sys/mount.h>

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
}

/// A way into a state: what applications hold, whether a client is there that never answers, and keys, each pressed
/// once the state before it is told.
struct Way {
    struct Step {
        std::string key;
        std::string state;
    };
    std::vector<Step> steps;
    std::vector<json> held;
    std::string condition;
    bool has_client{false};
    bool has_network{true};
};

/// Without what differs between a page that is written and one that is not any more.
json without_times(json value) {
    if (value.is_object()) {
        for (auto const* const of_the_living : {"running", "reasons", "troubles"}) {
            value.erase(of_the_living);
        }
        for (auto member = value.begin(); member != value.end();) {
            auto const& name = member.key();
            bool const is_time = name.size() > 2 && name.compare(name.size() - 2, 2, "_s") == 0;
            member = is_time ? value.erase(member) : std::next(member);
        }
    }
    for (auto& member : value) {
        if (member.is_structured()) {
            member = without_times(member);
        }
    }
    return value;
}

class Status_page_after_a_kill : public Status_page, public testing::WithParamInterface<Way> {};

TEST_P(Status_page_after_a_kill, Tells_everything) {
    auto const& way = GetParam();
    options.with_network = way.has_network;
    settings()["DefautNMRequestPattern"] = {0, 0, 1, 0, 0, 0};  // its release lets the ECU's own bit go as well
    settings()["KnockOutTimer"] = 100'000;
    start();
    std::optional<Test_client> radio;
    for (auto const& step : way.steps) {
        if (step.key == "p" || step.key == "n") {
            for (auto const& what : way.held) {
                request("1", what);
            }
        }
        if (way.has_client && step.state == way.steps.back().state) {
            radio = client("radio");
        }
        if (!step.key.empty()) {
            machine->press(step.key);
        }
        ASSERT_TRUE(is_in(step.state));
    }
    EXPECT_FALSE(why(way.condition).empty()) << "the reason that it stays";
    machine->signal_daemon(SIGSTOP);  // what it tells stands still for the comparison
    std::map<std::string, json> before;
    for (auto const* const subcommand : {"status", "clients", "holds"}) {
        before[subcommand] = without_times(told(subcommand));
    }
    kill();
    for (auto const& [subcommand, what] : before) {
        EXPECT_EQ(without_times(told(subcommand)), what) << subcommand;
    }
    auto const result = statectl({"status", "--json"});
    EXPECT_EQ(result.status, 1);
    auto const page = json::parse(result.output);
    EXPECT_EQ(page.at("state"), way.steps.back().state);
    EXPECT_EQ(page.at("running"), false);
    EXPECT_THAT(why("not-running"), HasSubstr("without a farewell"));
    EXPECT_FALSE(why(way.condition).empty()) << "is still told";
}

INSTANTIATE_TEST_SUITE_P(
    In, Status_page_after_a_kill,
    testing::Values(Way{{{"", "Starting up"}}, {}, "no-network-manager", false, false},
                    Way{{{"", "Running"}}, {}, "no-command"},
                    Way{{{"", "Running"}, {"n", "NM Controlled"}}, {com_alive("02")}, "network-needed"},
                    Way{{{"", "Running"}, {"n", "Post Run"}}, {k_ecu_alive}, "knock-out"},
                    Way{{{"", "Running"}, {"p", "Preparing"}}, {}, "client-open", true},
                    Way{{{"", "Running"}, {"p", "PreparedSD"}}, {}, "no-command"},
                    Way{{{"", "Running"}, {"p", "PreparedSD"}, {"r", "Resuming"}}, {}, "client-open", true},
                    Way{{{"", "Running"}, {"p", "PreparedSD"}, {"power", "Shutting down"}}, {}, "power-off"}),
    [](auto const& param) {
        auto name = param.param.steps.back().state;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    });

TEST_F(Status_page, Stays_as_the_previous_one_when_the_next_life_begins) {
    start_and_run();
    kill();
    auto const first = told("status");
    machine->start_daemon();
    EXPECT_THAT(why("restarted"), StartsWith("the daemon was restarted once since the boot"));
    auto const previous = told("status", {"--page", std::string(status::k_page_path) + status::k_previous});
    EXPECT_EQ(previous.at("pid"), first.at("pid"));
    EXPECT_EQ(previous.at("running"), false);
    EXPECT_NE(told("status").at("pid"), first.at("pid"));
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

/// Why there can't be a page, and what the tool says then.
struct Hindrance {
    char const* name;
    void (*prepare)();
    char const* sentence;
};

void mount_small(unsigned long flags) {
    std::filesystem::create_directories("/run/adaptive/status");
    ASSERT_EQ(::mount("tmpfs", "/run/adaptive/status", "tmpfs", flags, "size=64k,mode=755"), 0) << std::strerror(errno);
}

class Status_page_that_can_not_be_made : public Status_page, public testing::WithParamInterface<Hindrance> {
 protected:
    void TearDown() override {
        ::umount2(k_directory, MNT_DETACH);
        Status_page::TearDown();
    }
};

TEST_P(Status_page_that_can_not_be_made, Is_no_matter_to_the_daemon) {
    GetParam().prepare();
    ASSERT_FALSE(HasFatalFailure());
    start_and_run();
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
    auto const result = run({"/bin/sh", "-c", VEHICLE_BUILD "/tools/ap_statectl status 2>&1 >/dev/null"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, std::string("ap_statectl: ") + status::k_page_path + ": " + GetParam().sentence + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    With, Status_page_that_can_not_be_made,
    testing::Values(Hindrance{"a_file_in_the_way", [] { std::ofstream("/run/adaptive/status") << "in the way"; },
                              "Not a directory"},
                    Hindrance{"a_full_disk", [] { mount_small(0); }, "there is no status page"},
                    Hindrance{"a_read_only_disk", [] { mount_small(MS_RDONLY); }, "there is no status page"}),
    [](auto const& param) { return std::string(param.param.name); });

/// A subcommand with `--watch --json`, whose lines are kept.
class Watch {
 public:
    explicit Watch(std::string const& subcommand)
        : file_("/tmp/watched-" + subcommand),
          program_(
              {"/bin/sh", "-c", "exec " VEHICLE_BUILD "/tools/ap_statectl " + subcommand + " --watch --json >" + file_},
              {}) {
        program_.expect(EXIT_FAILURE);
    }

    std::optional<int> end() { return program_.wait(std::chrono::seconds(20)); }
    std::string lines() const {
        std::ifstream file(file_);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string last_line() const {
        auto const text = lines();
        return text.size() < 2 ? text : text.substr(text.rfind('\n', text.size() - 2) + 1);
    }

 private:
    std::string const file_;
    Child_process program_;
};

TEST_F(Status_page, Is_told_again_with_each_change_until_the_daemon_ends) {
    start_and_run();
    std::pair<char const*, char const*> const news[]{{"status", R"("state":"NM Controlled")"},
                                                     {"why", R"("state":"NM Controlled")"},
                                                     {"clients", R"("name":"radio")"},
                                                     {"holds", R"("held":true)"}};
    auto const shows = [&](Watch const& watch, char const* what) {
        auto const end = std::chrono::steady_clock::now() + Machine::k_patience;
        while (watch.lines().find(what) == std::string::npos && std::chrono::steady_clock::now() < end) {
            machine->watch(std::chrono::milliseconds(10));
        }
        return watch.lines().find(what) != std::string::npos;
    };
    std::vector<std::unique_ptr<Watch>> watches;
    for (auto const& [subcommand, what] : news) {
        watches.push_back(std::make_unique<Watch>(subcommand));
        ASSERT_TRUE(shows(*watches.back(), R"("running":true)")) << subcommand;
        ASSERT_EQ(watches.back()->lines().find(what), std::string::npos) << subcommand;
    }
    auto const radio = client("radio");
    request("1", com_alive("02"));
    machine->press("n");
    for (std::size_t i = 0; i < watches.size(); ++i) {
        EXPECT_TRUE(shows(*watches[i], news[i].second)) << news[i].first << watches[i]->lines();
    }
    kill();
    for (auto const& watch : watches) {
        EXPECT_EQ(watch->end(), 1);
        EXPECT_THAT(watch->last_line(), HasSubstr(R"("running":false)"));
    }
}

TEST_F(Status_page, Belongs_to_the_first_of_two_daemons) {
    start_and_run();
    auto const pid = told("status").at("pid");
    auto const from = machine->events().size();
    Child_process second({VEHICLE_BUILD "/src/main/ap_statemanager"}, {});
    ASSERT_TRUE(machine->await(Kind::state_word, "running", from)) << "the second one cycles";
    second.signal(SIGTERM);
    EXPECT_EQ(second.wait(std::chrono::seconds(20)), 0);
    EXPECT_EQ(told("status").at("pid"), pid);
    EXPECT_EQ(told("status").at("running"), true);
}

}  // namespace
}  // namespace bench::vehicle
