// Each member that is printed stands on the page of them (docs/json.md), and each row of that page is printed: both
// ways, by what the subcommands print of one page, one trace, one record and two configurations that have something of
// everything.

#include "status/driver_status.h"
#include "status/network_status.h"
#include "status/page_file.h"
#include "status/server_status.h"
#include "status/services_status.h"
#include "support/temporary_directory.h"
#include "tools/client_report.h"
#include "tools/command.h"
#include "tools/page/words.h"
#include "tools/service_call.h"
#include "tools/watch_report.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

namespace statectl {
namespace {

using nlohmann::json;
using Paths = std::set<std::string>;

void collect(json const& value, std::string const& path, Paths& paths) {
    if (value.is_array()) {
        for (auto const& element : value) {
            collect(element, path, paths);
        }
    }
    if (value.is_object()) {
        for (auto const& [name, member] : value.items()) {
            auto const place = (path.empty() ? name : path + '.' + name) + (member.is_array() ? "[]" : "");
            paths.insert(place);
            collect(member, place, paths);
        }
    }
}

/// All objects of a text: one over many lines, or one a line.
Paths paths_of(std::string const& text) {
    Paths paths;
    auto const whole = json::parse(text, nullptr, false);
    if (!whole.is_discarded()) {
        collect(whole, "", paths);
        return paths;
    }
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        collect(json::parse(line), "", paths);
    }
    return paths;
}

/// The names between backticks in the first cells of the page's tables, by headline. Events are those of the second
/// table of "wait".
std::map<std::string, Paths> documented() {
    std::map<std::string, Paths> sections;
    std::ifstream page(JSON_PAGE);
    std::string section;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("## ", 0) == 0) {
            section = line.substr(3);
        } else if (line.rfind("| Event ", 0) == 0) {
            section = "events";
        } else if (line.rfind("| `", 0) == 0) {
            auto const cell = line.substr(0, line.find(" |", 2));
            for (auto begin = cell.find('`'); begin != std::string::npos;) {
                auto const end = cell.find('`', begin + 1);
                auto const name = cell.substr(begin + 1, end - begin - 1);
                EXPECT_TRUE(sections[section].insert(name).second) << section << ": " << name << " stands there twice";
                begin = cell.find('`', end + 1);
            }
        }
    }
    return sections;
}

/// Where else members are told: those behind `prefix` in `section`, there behind `there`.
struct Elsewhere {
    std::string prefix;
    std::string section;
    std::string there;
};

constexpr char const* k_life = "A life";

class Json_members : public testing::Test {
 protected:
    static std::string said_by(std::string const& words) {
        CLI::App program;
        Action chosen;
        add_commands(program, chosen);
        program.parse(words);
        return said_by(chosen);
    }
    static std::string said_by(std::function<void()> const& speak) {
        testing::internal::CaptureStdout();
        speak();
        return testing::internal::GetCapturedStdout();
    }

    void expect(std::string const& section, std::string const& said, std::vector<Elsewhere> const& elsewhere = {}) {
        for (auto const& path : paths_of(said)) {
            EXPECT_TRUE(is_documented(section, path, elsewhere)) << section << ": " << path << " is not on the page";
        }
    }

    bool is_documented(std::string const& section, std::string const& path, std::vector<Elsewhere> const& elsewhere) {
        auto const is_there = [this](std::string const& place, std::string const& name) {
            auto const found = rows.find(place);
            return found != rows.end() && found->second.count(name) != 0 && (printed[place].insert(name), true);
        };
        bool found = is_there(section, path);
        for (auto const& [prefix, place, there] : elsewhere) {
            found = found || (path.rfind(prefix, 0) == 0 && is_there(place, there + path.substr(prefix.size())));
        }
        return found;
    }

    test_support::Temporary_directory directory;
    std::map<std::string, Paths> rows{documented()};
    std::map<std::string, Paths> printed;
};

/// A page on which a request waits for one of two clients, commands wait, and applications hold the machine awake.
class Busy_page {
 public:
    explicit Busy_page(std::string const& path) : page_(path, {"/nowhere.json", 100, 3, true}) {
        status::provided(status::Hold::com_alive, {"1"});
        status::com_requested("1", {1}, 2);
        status::devices_opened(1);
        status::key_taken(1);
        constexpr std::uint8_t k_report[]{1, 0, 1};
        status::network_state(k_report, sizeof k_report);
        status::state_word("running", status::Word_fate::refused);
        status::machine_state("Running", false);
        for (int const connection : {100'001, 100'002}) {
            status::client_connected(connection, "radio", "kOn");
        }
        status::group_asked(status::Group::applications, "kPrepSD");
        status::request_began("kPrepSD", std::chrono::steady_clock::now() + std::chrono::minutes(1));
        status::client_asked(100'001);
        status::client_asked(100'002);
        status::client_answered(100'001, "kPrepSD", 0);
    }

 private:
    status::Page_file const page_;
};

/// A process that presses a key again and again.
class Key_presser {
 public:
    Key_presser() : process_(::fork()) {
        while (process_ == 0) {
            status::key_taken(1);
            ::usleep(20'000);
        }
    }
    ~Key_presser() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    Key_presser(Key_presser const&) = delete;
    Key_presser& operator=(Key_presser const&) = delete;

 private:
    pid_t const process_;
};

/// A suspend in which somebody was late, and something of all that a record may have.
constexpr char const* k_record =
    R"({"line":"life","version":1,"boot":"a","life":1,"pid":7,"started":0,"started_real":1000000000,"from":0,"state":0}
{"line":"event","at":1000000000,"real":2000000000,"event":"transition","numbers":[0,1,1],"text":""}
{"line":"event","at":1000000001,"real":2000000001,"event":"held","numbers":[0,0,1],"text":"nav"}
{"line":"event","at":1000000002,"real":2000000002,"event":"key-dropped","numbers":[1,0,0],"text":""}
{"line":"event","at":1000000003,"real":2000000003,"event":"word","numbers":[1,0,0],"text":"running"}
{"line":"counted","at":1500000000,"real":2500000000,"counts":[3,0,0,0,4,0,0,0,0,0,0,9]}
{"line":"event","at":2000000000,"real":3000000000,"event":"transition","numbers":[1,5,3],"text":""}
{"line":"event","at":2000000001,"real":3000000001,"event":"group-asked","numbers":[2,0,0],"text":"kPrepSD"}
{"line":"event","at":2500000000,"real":3500000000,"event":"client-answered","numbers":[0,200000000,0],"text":"quick"}
{"line":"event","at":5000000000,"real":6000000000,"event":"client-timed-out","numbers":[0,0,0],"text":"radio"}
{"line":"event","at":5000000001,"real":6000000001,"event":"request-ended","numbers":[4,0,0],"text":""}
{"line":"end","at":6000000000,"real":7000000000,"how":"killed","silent":0}
)";

TEST_F(Json_members, Stand_on_the_page_of_them_each_and_no_others) {
    auto const file = directory.file("page");
    Busy_page const page(file);
    expect("status", said_by("status --json --page " + file));
    expect("why", said_by("why --json --page " + file), {{"", "status", ""}});
    expect("clients", said_by("clients --json --page " + file));
    expect("holds", said_by("holds --json --page " + file));
    expect("wait", said_by("wait StartingUp --json --page " + file));
    {
        Key_presser const presser;
        expect("wait", said_by("wait --event key-taken --for 20 --json --page " + file));
    }
    expect("watch", said_by([] {
               Watch_report report(true, {});
               report.offered("a", true);
               report.network_state({1});
               report.trouble("none");
           }));
    expect("client", said_by([] {
               Client_report const report(true);
               report.connected("a", "b");
               report.disconnected();
               report.requested(1, "b");
               report.answered(1, "b", 0, std::chrono::milliseconds(1), true);
               report.trouble("none");
           }));
    expect("ecu-alive, com-alive, cwu, restart", said_by([] {
               Call_options options;
               options.as_json = true;
               report_success(options, "done", std::chrono::microseconds(1));
               report_failure(options, "not done");
           }));
    auto const configuration = std::string(CONFIGURATIONS) + '/';
    expect("check-config", said_by("check-config --json --host x " + configuration + "misspelt_optional.json"));
    expect("check-config", said_by("check-config --json /dev/null"));
    std::vector<Elsewhere> const trace{{"lives[].", k_life, ""}, {"clients[].", k_life, "clients[]."}};
    expect("explain", said_by("explain --json " TRACE), trace);
    std::ofstream(directory.file("record.000001.jsonl")) << k_record;
    auto const records = " --json --page /nowhere --directory " + std::string(directory.path());
    expect("history", said_by("history" + records), {{"cycles[].", k_life, ""}});
    expect("last", said_by("last" + records), {{"", "history", "cycles[]."}, {"", k_life, ""}});
    expect("blame", said_by("blame" + records), {{"", k_life, "sequences[]."}});
    expect("offenders", said_by("offenders" + records),
           {{"clients[].", k_life, "clients[]."}, {"offenders[].", "explain", "offenders[]."}});
    expect("check-client",
           said_by("check-client --json --by-variable --patience 1 --quiet 1 --rule connects -- /bin/true"));
    for (auto const& word : event_words()) {
        EXPECT_TRUE(is_documented("events", word, {})) << word;
    }
    for (auto const& [section, names] : rows) {
        for (auto const& name : names) {
            EXPECT_EQ(printed[section].count(name), 1U) << section << ": nothing prints " << name;
        }
    }
}

}  // namespace
}  // namespace statectl
