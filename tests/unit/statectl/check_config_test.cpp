#include "command_line.h"
#include "statemanager/config/config_chooser.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "support/temporary_directory.h"
#include "tools/check_config/check.h"
#include "tools/check_config/unit.h"
#include "tools/check_config/words.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace statectl::check_config {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// CONFIGURATIONS is a folder of configurations, all but "good.json" with one mistake each, the file "sentences" with
// what is to be said of each of them, and a unit beside the one that is no mistake under the shipped unit; CORPUS is
// that of the parser's fuzz target.

std::string content(fs::path const& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::set<fs::path> files_in(fs::path const& folder, std::string const& extension) {
    std::set<fs::path> files;
    for (auto const& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && entry.path().extension() == extension) {
            files.insert(entry.path());
        }
    }
    return files;
}

Answer answer_for(fs::path const& file) {
    Question question;
    question.file = file.string();
    if (auto const unit = fs::path(file).replace_extension(".service"); fs::exists(unit)) {
        question.unit = unit_named(unit.string());
        question.unit.name = "the unit";
    }
    return check(question);
}

// As in the file "sentences": what is found, or the daemon's own words where there is nothing to add to them.
std::vector<std::string> sentences_of(Answer const& answer) {
    std::vector<std::string> sentences;
    auto const begin = answer.verdict.is_taken ? "taken " : "refused ";
    for (auto const& finding : answer.findings) {
        sentences.push_back(begin + (finding.line == 0 ? "" : "line " + std::to_string(finding.line) + ' ') +
                            finding.text);
    }
    if (sentences.empty() && !answer.verdict.is_taken) {
        sentences.push_back(begin + answer.verdict.reason);
    }
    return sentences;
}

std::map<std::string, std::vector<std::string>> table_of_sentences() {
    std::map<std::string, std::vector<std::string>> table;
    std::ifstream file(CONFIGURATIONS "/sentences");
    std::string name;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("  ", 0) == 0) {
            table[name].push_back(line.substr(2));
        } else {
            name = line;
            table[name];
        }
    }
    return table;
}

TEST(A_configuration, With_a_mistake_is_told_by_its_sentence) {
    auto const table = table_of_sentences();
    for (auto const& file : files_in(CONFIGURATIONS, ".json")) {
        auto const row = table.find(file.stem().string());
        ASSERT_NE(row, table.end()) << file;
        EXPECT_EQ(sentences_of(answer_for(file)), row->second) << file;
    }
    EXPECT_EQ(table.size(), files_in(CONFIGURATIONS, ".json").size());
    EXPECT_GT(table.size(), 50U);
}

TEST(A_configuration, Whose_control_file_is_a_folder_is_told_so_with_and_without_a_slash) {
    test_support::Temporary_directory const directory;
    auto document = nlohmann::json::parse(content(CONFIGURATIONS "/good.json"));
    for (auto const& path : {directory.path().string(), directory.path().string() + '/'}) {
        document["ap_statemanager"]["SharedMemoryConfig"]["UpdateStatusFile"] = path;
        EXPECT_THAT(sentences_of(answer_for(directory.write("folder.json", document.dump()))),
                    ElementsAre(EndsWith("UpdateStatusFile is " + path + ", which names a folder")));
    }
}

TEST(A_configuration, Is_refused_exactly_when_the_daemons_parser_refuses_it) {
    using ximo::ap::statemanager::config::State_manager_json_parser;
    auto files = files_in(CORPUS, "");
    for (auto const& folder : {CORPUS, CONFIGURATIONS}) {
        files.merge(files_in(folder, ".json"));
    }
    std::size_t refused = 0;
    for (auto const& file : files) {
        Config config;
        bool const parsed = State_manager_json_parser::parse(file.string(), config);
        auto const answer = answer_for(file);
        EXPECT_EQ(answer.verdict.is_parsed, parsed) << file;
        EXPECT_EQ(answer.verdict.is_taken, answer.verdict.reason.empty()) << file;
        refused += parsed ? 0 : 1;
    }
    EXPECT_GT(refused, 20U);
    EXPECT_GT(files.size(), refused + 20);
}

TEST(A_configuration, That_is_shipped_is_taken_without_a_word) {
    for (auto const& file : files_in(DEPLOYED_EXAMPLES, ".json")) {
        EXPECT_THAT(sentences_of(answer_for(file)), IsEmpty()) << file;
    }
}

TEST(A_configuration, That_can_not_be_read_is_refused_in_the_daemons_words) {
    EXPECT_THAT(sentences_of(answer_for("/nowhere/at/all.json")),
                ElementsAre("refused Configuration file could NOT be opened! Path:  /nowhere/at/all.json"));
    EXPECT_THAT(sentences_of(answer_for(CONFIGURATIONS)),
                ElementsAre("refused Failed to parse configuration:  it is not a regular file"));
}

TEST(A_configuration, With_more_mistakes_than_the_log_holds_is_refused_for_the_last_one) {
    test_support::Temporary_directory const directory;
    auto document = nlohmann::json::parse(content(CONFIGURATIONS "/good.json"));
    auto& root = document["ap_statemanager"];
    root["ApplicationsRequestAliveConfig"] = std::vector<int>(15000, 1);
    root.erase("CWURequestConfig");

    auto const answer = answer_for(directory.write("many.json", document.dump()));

    EXPECT_EQ(answer.verdict.reason, "State_manager_json_parser: CWURequestConfig not set in configuration file!");
}

TEST(A_configuration, Is_asked_for_the_machine_that_is_to_read_it) {
    using ximo::ap::statemanager::config::Config_chooser;
    Question question;
    question.file = DEPLOYED_EXAMPLES "/ap_statemanager.json";

    question.host = "a-machine-with-a-long-name";
    EXPECT_THAT(sentences_of(check(question)), IsEmpty());
    EXPECT_EQ(check(question).read_file, "/etc/adaptive/" + Config_chooser::s_default_sm_config);

    question.host = HOST_JAVA;
    EXPECT_EQ(check(question).read_file, "/etc/adaptive/" + Config_chooser::s_sm_config_jo);
    EXPECT_THAT(sentences_of(check(question)),
                ElementsAre("taken a machine named " HOST_JAVA
                            " reads /etc/adaptive/ap_statemanager_jo.json, not ap_statemanager.json"));
}

TEST(A_configuration, Is_asked_how_long_a_suspend_may_take) {
    Question question;
    question.file = CONFIGURATIONS "/good.json";
    question.limit_seconds = 180;
    EXPECT_THAT(sentences_of(check(question)), IsEmpty());

    question.limit_seconds = 179.5;
    EXPECT_THAT(sentences_of(check(question)),
                ElementsAre("taken a suspend may take 180 s, more than the limit of 179.5 s"));
}

// docs/supervision.md adds the same up for the example: 19.3 s for a cycle.
TEST(Times, Of_a_configuration_are_those_that_the_unit_needs) {
    auto const good = *answer_for(CONFIGURATIONS "/good.json").times;
    EXPECT_DOUBLE_EQ(good.cycle, 19.3);
    EXPECT_DOUBLE_EQ(good.watchdog, 19.3);
    EXPECT_DOUBLE_EQ(good.stop, 43.3);
    EXPECT_DOUBLE_EQ(good.suspend, 180);
    EXPECT_DOUBLE_EQ(good.knock_out, 0.3);

    auto const without_network = *answer_for(DEPLOYED_EXAMPLES "/ap_statemanager.json").times;
    EXPECT_DOUBLE_EQ(without_network.cycle, 1.3);
    EXPECT_DOUBLE_EQ(without_network.watchdog, 2.6);
}

TEST(A_unit, Counts_with_its_drop_ins) {
    test_support::Temporary_directory const directory;
    auto const unit = directory.write("own.service",
                                      "[Service]\n \tWatchdogSec=1min 30s\n \tProtectSystem = strict \t\r\n"
                                      "ReadWritePaths=/a -/b\n[Install]\nWatchdogSec=1\n");
    fs::create_directory(unit + ".d");
    std::ofstream(unit + ".d/50-own.conf") << "[Service]\n# slower\nWatchdogSec=500ms\nReadWritePaths=/c\n";

    auto const read = unit_named(unit);

    EXPECT_EQ(read.watchdog_seconds, 0.5);
    EXPECT_EQ(read.stop_seconds, 90);
    EXPECT_TRUE(read.is_strict);
    EXPECT_THAT(read.writable, ElementsAre("/a", "/b", "/c"));
}

TEST(A_unit, Has_times_in_the_units_of_the_service_manager) {
    std::vector<std::pair<char const*, std::optional<double>>> const rows{
        {"1", 1},        {"2s", 2},        {"2sec", 2},          {"2second", 2},      {"2 seconds", 2},
        {"500ms", 0.5},  {"500msec", 0.5}, {"500000us", 0.5},    {"500000usec", 0.5}, {"2m", 120},
        {"2min", 120},   {"2minute", 120}, {"2minutes", 120},    {"2h", 7200},        {"2hr", 7200},
        {"2hour", 7200}, {"2hours", 7200}, {"1h 1min 1s", 3661}, {"0", std::nullopt}, {"infinity", std::nullopt}};
    for (auto const& [text, seconds] : rows) {
        Unit unit;
        read_unit("[Service]\nWatchdogSec=" + std::string(text) + "\n", unit);
        EXPECT_EQ(unit.watchdog_seconds, seconds) << text;
    }
}

TEST(Words, Are_as_far_apart_as_it_takes_slips_to_write_one_for_the_other) {
    std::vector<std::tuple<char const*, char const*, std::size_t>> const rows{
        {"", "", 0},       {"", "abc", 3},    {"abc", "aBC", 0},   {"abc", "abd", 1},
        {"abc", "xbc", 1}, {"ab", "abc", 1},  {"bc", "abc", 1},    {"ab", "ba", 1},
        {"abc", "acb", 1}, {"abc", "bac", 1}, {"abcd", "badc", 2}, {"axb", "bxa", 2},
        {"abc", "cab", 2}, {"ca", "abc", 3},  {"aab", "baa", 2},   {"kitten", "sitting", 3}};
    for (auto const& [left, right, slips] : rows) {
        EXPECT_EQ(distance(left, right), slips) << left << ' ' << right;
        EXPECT_EQ(distance(right, left), slips) << right << ' ' << left;
    }
}

TEST(A_unit, That_is_shipped_is_known) {
    EXPECT_EQ(shipped_unit().watchdog_seconds, 20);
    EXPECT_EQ(shipped_unit().stop_seconds, 45);
    EXPECT_THAT(shipped_unit().writable, testing::Contains("/sys/vmctl"));
    EXPECT_EQ(shipped_unit().user, "ap-statemanager");
    EXPECT_THAT(shipped_unit().groups, ElementsAre("ap-statemanager", "input"));
    EXPECT_THAT(shipped_unit().prefixes, ElementsAre("/sys/vmctl"));
}

TEST(A_unit, That_is_not_there_is_told) {
    try {
        unit_named("no-such-daemon");
        FAIL();
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), StartsWith("there is no unit no-such-daemon.service"));
    }
}

class Watch_command : public Command_line {};

TEST_F(Watch_command, Says_that_a_configuration_is_refused) {
    ASSERT_TRUE(accepts("watch --config " CONFIGURATIONS "/overlapping_areas.json"));
    try {
        chosen();
        FAIL();
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), HasSubstr("is refused by the state manager: State_manager_json_parser: Inncorect"));
    }
}

TEST(The_schema, That_is_installed_is_made_from_the_table_of_members) {
    EXPECT_EQ(content(SCHEMA), schema().dump(2) + "\n") << "ap_statectl check-config --schema";
}

TEST(The_schema, Has_every_member_that_the_manual_page_has) {
    auto const manual = content(CONFIGURATION_MANUAL);
    for (auto const& member : members()) {
        EXPECT_THAT(manual, HasSubstr(std::string("Li ") + member.name)) << member.name;
    }
}

}  // namespace
}  // namespace statectl::check_config
