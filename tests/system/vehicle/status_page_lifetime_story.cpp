// The status page itself: it outlives its daemon, is told again with each change, and can be missing.

#include "status_machine.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include <sys/mount.h>

namespace bench::vehicle {
namespace {

using nlohmann::json;
using test_support::Test_client;
using testing::HasSubstr;
using testing::StartsWith;

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
