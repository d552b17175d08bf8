#ifndef TESTS_SYSTEM_VEHICLE_STORY_H
#define TESTS_SYSTEM_VEHICLE_STORY_H

#include "bench/vehicle/vehicle.h"
#include "tool.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace bench::vehicle {

/// A complete machine that each story starts, and changes before, to its liking. A daemon that runs at a story's end is
/// stopped; one that ended without the story's waiting for it, and any program that came to an end that nobody had
/// asked for, fails the story.
class Story : public testing::Test {
 protected:
    Story() {
        std::ifstream file(VEHICLE_PROJECT "/deploy/config/ap_statemanager.json");
        configuration = nlohmann::json::parse(file);
        options.programs = VEHICLE_BUILD;
    }
    ~Story() override { finish(); }

    nlohmann::json& settings() { return configuration["ap_statemanager"]; }

    void build() {
        if (options.configuration.empty()) {
            options.configuration = configuration.dump();
        }
        record();
        machine = std::make_unique<Vehicle>(options);
    }
    void start() {
        if (!machine) {
            build();
        }
        machine->start_daemon();
    }
    void start_and_run() {
        start();
        ASSERT_TRUE(sees(Kind::state_word, "running"));
    }

    /// Ends the machine; a story does it by itself at last.
    void finish() {
        EXPECT_FALSE(machine && machine->has_ended_unawaited()) << "The daemon ended, and the story didn't wait for it";
        machine.reset();
        hold_trace();
    }

    bool sees(Kind kind, std::string const& text) { return machine->await(kind, text).has_value(); }
    bool logs(std::string const& text) { return sees(Kind::log, text); }
    bool ends_with(int status) { return machine->await_end() == status; }

    /// The level at which a text was logged, 1 fatal to 6 verbose; 0 when it was not.
    int level_of(std::string const& text) const {
        for (auto const& event : machine->events()) {
            if (event.kind == Kind::log && event.text == text) {
                return event.level;
            }
        }
        return 0;
    }

    /// What was logged of some texts, in the order in which it was.
    std::vector<std::string> logged_of(std::vector<std::string> const& wanted) const {
        auto logged = texts(Kind::log);
        auto const others = std::remove_if(logged.begin(), logged.end(), [&wanted](auto const& text) {
            return std::find(wanted.begin(), wanted.end(), text) == wanted.end();
        });
        logged.erase(others, logged.end());
        return logged;
    }

    std::vector<std::string> texts(Kind kind) const {
        std::vector<std::string> result;
        for (auto const& event : machine->events()) {
            if (event.kind == kind) {
                result.push_back(event.text);
            }
        }
        return result;
    }

    /// Each story's log is stored, for good where the environment names a folder.
    void record() {
        if (options.trace != nullptr) {
            return;
        }
        auto const* const folder = std::getenv("STORY_TRACES");
        auto const& info = *testing::UnitTest::GetInstance()->current_test_info();
        auto name = std::string(info.test_suite_name()) + '.' + info.name() + ".dlt";
        std::replace(name.begin(), name.end(), '/', '_');
        trace_path_ = std::filesystem::path(folder == nullptr ? "/tmp" : folder) / name;
        trace_.open(trace_path_, std::ios::binary);
        options.trace = &trace_;
    }

    /// The daemon's lives are those that the simulated machine has, given what came from outside; as far as its log can
    /// decide it.
    void hold_trace() {
        if (!trace_.is_open()) {
            return;
        }
        trace_.close();
#ifdef AP_WHATIF
        constexpr int k_no_life = 2;
        auto const [status, verdict] = run({AP_WHATIF, "--trace", trace_path_.string()});
        EXPECT_THAT(status, testing::AnyOf(0, k_no_life)) << verdict;
        for (auto const* const words : {"agrees", "not decidable"}) {
            RecordProperty(words, static_cast<int>(count(verdict, words)));
        }
        if (count(verdict, "not decidable") != 0) {
            std::cout << verdict;
        }
#endif
    }

    /// How many of a trace's lives have the verdict.
    static std::size_t count(std::string const& verdicts, std::string const& verdict) {
        std::size_t lives = 0;
        for (auto place = verdicts.find(": " + verdict); place != std::string::npos;
             place = verdicts.find(": " + verdict, place + 1)) {
            ++lives;
        }
        return lives;
    }

    nlohmann::json configuration;
    std::filesystem::path trace_path_;
    std::ofstream trace_;
    Options options;
    std::unique_ptr<Vehicle> machine;
};

}  // namespace bench::vehicle

#endif
