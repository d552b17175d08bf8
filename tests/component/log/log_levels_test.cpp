// Which levels of a program arrive, with log daemons of whatever default that are there first, come late, or are
// started again; and what becomes of a program whose libdlt can't be initialised at first. Where a test lets a fixed
// time pass, something unwanted has time to happen: on a busy machine it may find less, and does not fail.

#include "base/temporary_directory.h"
#include "dlt_fixture.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>

namespace log_test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::MatchesRegex;

class Log_levels : public Dlt {
 protected:
    std::vector<std::string> const k_quiet{"QUIT quiet error", "QUIT quiet warning"};

    // From what was kept for a daemon that comes late on, all levels have to be in force, also when it could have told
    // its default.
    void expect_all_levels_of(Dlt_reader& latecomer, Child_process const& program, std::string const& last_kept) {
        texts_until(latecomer, last_kept);
        EXPECT_EQ(told_levels(latecomer, program), 2U);
        std::this_thread::sleep_for(milliseconds(1000));
        for (int time = 0; time < 3; ++time) {
            EXPECT_EQ(told_levels(latecomer, program), 2U);
        }
    }

    // How many of two levels come that the program is told to log at.
    std::size_t told_levels(Dlt_reader& viewer, Child_process const& program) {
        tell(program, 'x');
        tell(program, 'e');
        auto const texts = texts_until(viewer, "told of an error");
        return static_cast<std::size_t>(std::count_if(texts.begin(), texts.end(), [](auto const& text) {
            return text == "DFLT told" || text == "DFLT told in detail";
        }));
    }

    // Each of the three levels is told once; which of them come.
    std::vector<std::string> quiet_words(Dlt_reader& viewer, Child_process const& program) {
        tell(program, 'q');
        auto texts = texts_until(viewer, "quiet warning");
        auto const is_another = [](auto const& text) { return text.rfind("QUIT", 0) != 0; };
        texts.erase(std::remove_if(texts.begin(), texts.end(), is_another), texts.end());
        return texts;
    }
};

TEST_F(Log_levels, Begin_with_what_was_logged_before_the_daemon_was_there) {
    auto program = started("wait");
    std::this_thread::sleep_for(milliseconds(50));
    Dlt_reader viewer;
    auto const texts = texts_until(viewer, "waiting");
    EXPECT_THAT(texts, Contains("DFLT before logging was initialised"));
    EXPECT_THAT(texts.back(), HasSubstr("waiting"));
    program.close_input();
    EXPECT_EQ(program.wait(k_patience), 0);
}

TEST_F(Log_levels, Are_all_in_force_whatever_the_daemons_default_until_its_viewer_wants_another) {
    for (int const default_level : {4, 6}) {
        Dlt_reader viewer(default_level);
        auto const program = started("wait");
        EXPECT_EQ(told_levels(viewer, program), 2U) << "at once";
        std::this_thread::sleep_for(milliseconds(600));
        EXPECT_EQ(told_levels(viewer, program), 2U) << "and when it could have told its default";
        EXPECT_EQ(quiet_words(viewer, program), k_quiet) << "but those of a context that was made for few";
        ASSERT_TRUE(viewer.set_level("PROG", "DFLT", 4));
        auto const deadline = steady_clock::now() + k_patience;
        while (told_levels(viewer, program) != 1 && steady_clock::now() < deadline) {
            std::this_thread::sleep_for(milliseconds(20));
        }
        std::this_thread::sleep_for(milliseconds(600));
        EXPECT_EQ(told_levels(viewer, program), 1U) << "it stays";
    }
}

TEST_F(Log_levels, Are_all_in_force_when_a_daemon_has_come_late_and_after_the_next) {
    auto const program = started("wait");
    std::this_thread::sleep_for(milliseconds(700));
    auto latecomer = std::make_unique<Dlt_reader>(4);
    expect_all_levels_of(*latecomer, program, "waiting");
    latecomer->daemon().signal(SIGKILL);
    latecomer.reset();
    tell(program, 'x');
    Dlt_reader next(4);
    expect_all_levels_of(next, program, "told in detail");
}

TEST_F(Log_levels, Are_few_for_a_context_that_was_made_for_few_until_a_viewer_wants_more) {
    auto const program = started("wait");
    tell(program, 'q');
    std::this_thread::sleep_for(milliseconds(700));
    Dlt_reader latecomer(4);
    texts_until(latecomer, "quiet warning");
    std::this_thread::sleep_for(milliseconds(1000));
    EXPECT_EQ(quiet_words(latecomer, program), k_quiet);
    ASSERT_TRUE(latecomer.set_level("PROG", "QUIT", 6));
    auto const deadline = steady_clock::now() + k_patience;
    while (quiet_words(latecomer, program).size() != 3 && steady_clock::now() < deadline) {
        std::this_thread::sleep_for(milliseconds(20));
    }
    EXPECT_EQ(quiet_words(latecomer, program).size(), 3U);
}

// Each message that is logged wakes the log's writer; here none is until the level is in force.
TEST_F(Log_levels, Are_those_that_a_viewer_wants_of_a_program_that_says_nothing) {
    Dlt_reader viewer;
    auto const program = started("wait");
    texts_until(viewer, "waiting");
    ASSERT_TRUE(viewer.set_level("PROG", "DFLT", 2));
    auto const deadline = steady_clock::now() + k_patience;
    while (told_levels(viewer, program) != 0 && steady_clock::now() < deadline) {
        std::this_thread::sleep_for(milliseconds(20));
    }
    ASSERT_TRUE(viewer.set_level("PROG", "DFLT", 6));
    std::vector<std::string> texts;
    do {
        tell(program, 'x');
        texts = texts_until(viewer, "told in detail", milliseconds(100));
    } while (texts.back() != "DFLT told in detail" && steady_clock::now() < deadline);
    EXPECT_EQ(texts.back(), "DFLT told in detail");
}

// What keeps libdlt from being initialised at first; a later attempt finds it gone.
struct Obstacle {
    char const* name;
    std::vector<std::string> environment;

    friend std::ostream& operator<<(std::ostream& out, Obstacle const& obstacle) { return out << obstacle.name; }
};

class Dlt_that_can_not_be_initialised : public Dlt, public testing::WithParamInterface<Obstacle> {
 protected:
    static constexpr char const* k_later = "/tmp/later";  // a directory of the log daemon's pipe that comes late
    ~Dlt_that_can_not_be_initialised() override { ::unlink(k_later); }

    base::Temporary_directory directory;
};

TEST_P(Dlt_that_can_not_be_initialised, Is_told_once_and_tried_again_and_loses_nothing) {
    Dlt_reader viewer;
    Child_process const program({"sh", "-c", R"(exec "$0" wait 2>"$1")", LOG_PROGRAM, directory.file("told")},
                                GetParam().environment);
    std::this_thread::sleep_for(milliseconds(1200));  // two attempts
    std::filesystem::create_directory_symlink("/tmp", k_later);
    auto const texts = texts_until(viewer, "waiting");
    EXPECT_THAT(texts, Contains("DFLT before logging was initialised"));
    EXPECT_EQ(texts.back(), "DFLT waiting");
    std::ifstream told(directory.file("told"));
    std::string line;
    std::getline(told, line);
    EXPECT_THAT(line,
                MatchesRegex("PROG: libdlt can't be initialised .its pipes are in /tmp.*; tried again each second"));
    EXPECT_FALSE(std::getline(told, line)) << line;
}

// libdlt does not free the buffer of an initialisation that a refused thread ended, 50 kB; that leak is its own.
INSTANTIATE_TEST_SUITE_P(Obstacles, Dlt_that_can_not_be_initialised,
                         testing::Values(Obstacle{"A_directory_that_is_missing", {"DLT_PIPE_DIR=/tmp/later"}},
                                         Obstacle{"A_first_thread_that_can_not_be_started",
                                                  {"LD_PRELOAD=" NO_THREAD, "NO_THREAD=1",
                                                   "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0"}},
                                         Obstacle{"A_second_thread_that_can_not_be_started",
                                                  {"LD_PRELOAD=" NO_THREAD, "NO_THREAD=2",
                                                   "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0"}}),
                         [](auto const& instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace log_test
