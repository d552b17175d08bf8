#include "bench/process/child_process.h"
#include "bench/process/scratch_directory.h"
#include "bench/vehicle/dlt_reader.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

namespace {

using bench::Child_process;
using bench::vehicle::Dlt_reader;
using bench::vehicle::Timeline;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::Contains;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr milliseconds k_patience{20000};
constexpr char const* k_last_words = "from the destructor of a static object";

class Dlt : public testing::Test {
 protected:
    static Child_process started(std::string const& task, std::vector<std::string> const& environment = {}) {
        return {{LOG_PROGRAM, task}, environment};
    }

    void run(std::string const& task) {
        auto program = started(task);
        ASSERT_EQ(program.wait(k_patience), 0);
    }

    // How long a busy program takes at most, when it is given a processor.
    milliseconds quickest_run() {
        auto quickest = milliseconds::max();
        for (int round = 0; round < 3; ++round) {
            auto const before = steady_clock::now();
            run("many");
            quickest = std::min(quickest, std::chrono::duration_cast<milliseconds>(steady_clock::now() - before));
        }
        return quickest;
    }

    // From then on nothing is logged any more, and what the log daemon has not taken lies with its client.
    static void await_end_of_writer(pid_t program) {
        auto const deadline = steady_clock::now() + k_patience;
        while (has_writer(program) && steady_clock::now() < deadline) {
            std::this_thread::sleep_for(milliseconds(1));
        }
    }

    static bool has_writer(pid_t program) { return !writer_of(program).empty(); }

    // Where the system tells of the thread; empty when there is none.
    static std::filesystem::path writer_of(pid_t program) {
        std::error_code gone;
        std::filesystem::directory_iterator const threads("/proc/" + std::to_string(program) + "/task", gone);
        for (auto const& thread : threads) {
            std::string name;
            std::getline(std::ifstream(thread.path() / "comm"), name);
            if (name == "log-writer") {
                return thread.path();
            }
        }
        return {};
    }

    static std::uint64_t blocked_signals_of_writer(pid_t program) {
        std::ifstream status(writer_of(program) / "status");
        std::string line;
        while (std::getline(status, line) && line.rfind("SigBlk:", 0) != 0) {
        }
        return line.empty() ? 0 : std::stoull(line.substr(7), nullptr, 16);
    }

    static void tell(Child_process const& program, char what) { ASSERT_EQ(::write(program.input(), &what, 1), 1); }

    // Whether the thousand numbers that a program logs at once have all come, each once and in their order.
    static bool has_all_numbers(std::vector<std::string> const& texts, int first = 0) {
        int next = first;
        for (auto const& text : texts) {
            if (text.rfind("DFLT number ", 0) != 0) {
                continue;
            }
            if (text.rfind("DFLT number " + std::to_string(next++) + " xxx", 0) != 0) {
                return false;
            }
        }
        return next == first + 1000;
    }

    // What comes of a program that ends while the log daemon does not read, and reads again a moment later.
    std::vector<std::string> texts_of_an_end_without_reader() {
        Dlt_reader viewer;
        viewer.daemon().signal(SIGSTOP);
        auto program = started("many, told at the end");
        char byte = 0;
        EXPECT_EQ(::read(program.output(), &byte, 1), 1);
        await_end_of_writer(program.pid());
        viewer.daemon().signal(SIGCONT);
        EXPECT_EQ(program.wait(k_patience), 0);
        return texts_until(viewer, k_last_words, milliseconds(1000));
    }

    // What a program logs within 1.6 s of a daemon's coming when it is told each 100 ms to log at two levels, and with
    // what it logs in the last 600 ms, when all levels have to be in force.
    struct Logged {
        std::ptrdiff_t told;
        std::ptrdiff_t in_detail;
    };
    Logged logged_of_latecomer(Dlt_reader& latecomer, Child_process const& program) {
        std::this_thread::sleep_for(milliseconds(1000));
        latecomer.take();
        for (int time = 0; time < 6; ++time) {
            tell(program, 'x');
            std::this_thread::sleep_for(milliseconds(100));
        }
        tell(program, 'e');
        auto const texts = texts_until(latecomer, "told of an error");
        return {std::count(texts.begin(), texts.end(), "DFLT told"),
                std::count(texts.begin(), texts.end(), "DFLT told in detail")};
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
        return texts_until(viewer, "quiet warning");
    }

    // The messages of contexts other than the daemon's own until one begins with `last`.
    std::vector<std::string> texts_until(Dlt_reader& viewer, std::string const& last,
                                         milliseconds patience = k_patience) {
        auto const deadline = steady_clock::now() + patience;
        std::vector<std::string> texts;
        while (steady_clock::now() < deadline) {
            for (auto& message : viewer.take()) {
                texts.push_back(message.context + " " + message.text);
                if (message.text.rfind(last, 0) == 0) {
                    return texts;
                }
            }
            std::this_thread::sleep_for(milliseconds(1));
        }
        texts.push_back("never came: " + last);
        return texts;
    }
};

TEST_F(Dlt, Shows_each_argument_in_its_order) {
    Dlt_reader viewer;
    run("types");
    EXPECT_THAT(texts_until(viewer, k_last_words),
                Contains(MatchesRegex("DFLT types text 1 -8 -16 -32 -9223372036854775808 8 16 32 18446744073709551615 "
                                      "be.ef")));
}

TEST_F(Dlt, Shows_the_context_of_a_logger) {
    Dlt_reader viewer;
    run("types");
    EXPECT_THAT(texts_until(viewer, k_last_words), Contains("OTHR from another context"));
}

TEST_F(Dlt, Shows_what_was_logged_before_and_after_its_time) {
    Dlt_reader viewer;
    run("");
    auto const texts = texts_until(viewer, k_last_words);
    EXPECT_THAT(texts, Contains("DFLT before logging was initialised"));
    EXPECT_THAT(texts, Contains(std::string("DFLT ") + k_last_words));
}

TEST_F(Dlt, Says_how_much_of_a_long_message_was_cut) {
    Dlt_reader viewer;
    run("long");
    EXPECT_THAT(texts_until(viewer, k_last_words), Contains(MatchesRegex("DFLT xxx.*x .[0-9]+ bytes cut.")));
}

TEST_F(Dlt, Loses_nothing_of_a_busy_program) {
    Dlt_reader viewer;
    auto program = started("wait");
    texts_until(viewer, "waiting");
    for (int const first : {0, 1000, 2000}) {
        tell(program, 'm');
        auto const texts = texts_until(viewer, "number " + std::to_string(first + 999));
        EXPECT_TRUE(has_all_numbers(texts, first)) << testing::PrintToString(texts);
    }
}

TEST_F(Dlt, Is_not_waited_for_at_the_end_of_a_program) {
    EXPECT_LT(quickest_run(), milliseconds(1500));
}

TEST_F(Dlt, Gets_what_was_logged_before_it_was_there) {
    auto program = started("wait");
    std::this_thread::sleep_for(milliseconds(50));
    Dlt_reader viewer;
    auto const texts = texts_until(viewer, "waiting");
    EXPECT_THAT(texts, Contains("DFLT before logging was initialised"));
    EXPECT_THAT(texts.back(), HasSubstr("waiting"));
    program.close_input();
    EXPECT_EQ(program.wait(k_patience), 0);
}

TEST_F(Dlt, Has_all_levels_of_a_program_whatever_its_own_default) {
    Dlt_reader viewer(4);
    auto const program = started("wait");
    EXPECT_EQ(told_levels(viewer, program), 2U) << "at once";
    std::this_thread::sleep_for(milliseconds(1000));
    EXPECT_EQ(told_levels(viewer, program), 2U) << "and when it has told its default";
}

TEST_F(Dlt, Lowers_the_level_of_a_context_when_its_viewer_wants_it) {
    for (int const default_level : {4, 6}) {
        Dlt_reader viewer(default_level);
        auto const program = started("wait");
        EXPECT_THAT(texts_until(viewer, "waiting").back(), HasSubstr("waiting"));
        std::this_thread::sleep_for(milliseconds(1000));
        EXPECT_EQ(told_levels(viewer, program), 2U);
        ASSERT_TRUE(viewer.set_level("PROG", "DFLT", 4));
        auto const deadline = steady_clock::now() + k_patience;
        while (told_levels(viewer, program) != 1 && steady_clock::now() < deadline) {
            std::this_thread::sleep_for(milliseconds(20));
        }
        std::this_thread::sleep_for(milliseconds(600));
        EXPECT_EQ(told_levels(viewer, program), 1U) << "it stays";
    }
}

TEST_F(Dlt, Has_all_levels_of_a_program_a_second_after_it_has_come_late) {
    auto const program = started("wait");
    std::this_thread::sleep_for(milliseconds(700));
    Dlt_reader latecomer(4);
    auto const logged = logged_of_latecomer(latecomer, program);
    EXPECT_EQ(logged.told, 6);
    EXPECT_EQ(logged.in_detail, 6);
}

TEST_F(Dlt, Has_all_levels_of_a_program_again_after_it_was_killed) {
    auto viewer = std::make_unique<Dlt_reader>(4);
    auto const program = started("wait");
    EXPECT_THAT(texts_until(*viewer, "waiting").back(), HasSubstr("waiting"));
    viewer->daemon().signal(SIGKILL);
    viewer.reset();
    tell(program, 'x');
    Dlt_reader next(4);
    auto const logged = logged_of_latecomer(next, program);
    EXPECT_EQ(logged.in_detail, 6);
}

TEST_F(Dlt, Has_the_level_of_a_context_that_was_made_for_few_messages_whenever_it_comes) {
    auto const program = started("wait");
    tell(program, 'q');
    std::this_thread::sleep_for(milliseconds(700));
    Dlt_reader latecomer(4);
    std::vector<std::string> const quiet{"QUIT quiet error", "QUIT quiet warning"};
    texts_until(latecomer, "quiet warning");
    std::this_thread::sleep_for(milliseconds(1000));
    EXPECT_EQ(quiet_words(latecomer, program), quiet);
    auto const later_program = started("wait");
    texts_until(latecomer, "waiting");
    EXPECT_EQ(quiet_words(latecomer, later_program), quiet);
}

TEST_F(Dlt, Raises_the_level_of_a_context_that_was_made_for_few_messages_when_its_viewer_wants_it) {
    auto const program = started("wait");
    tell(program, 'q');
    std::this_thread::sleep_for(milliseconds(700));
    Dlt_reader latecomer(4);
    texts_until(latecomer, "quiet warning");
    std::this_thread::sleep_for(milliseconds(1000));
    ASSERT_TRUE(latecomer.set_level("PROG", "QUIT", 6));
    auto const deadline = steady_clock::now() + k_patience;
    while (quiet_words(latecomer, program).size() != 3 && steady_clock::now() < deadline) {
        std::this_thread::sleep_for(milliseconds(20));
    }
    EXPECT_EQ(quiet_words(latecomer, program).size(), 3U);
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

    bench::Scratch_directory directory;
};

TEST_P(Dlt_that_can_not_be_initialised, Is_told_once_and_tried_again_and_loses_nothing) {
    Dlt_reader viewer;
    Child_process const program({"sh", "-c", R"(exec "$0" wait 2>"$1")", LOG_PROGRAM, directory.file("told")},
                                GetParam().environment);
    std::this_thread::sleep_for(milliseconds(1500));
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

INSTANTIATE_TEST_SUITE_P(
    Obstacles, Dlt_that_can_not_be_initialised,
    testing::Values(Obstacle{"A_directory_that_is_missing", {"DLT_PIPE_DIR=/tmp/later"}},
                    Obstacle{"A_first_thread_that_can_not_be_started",
                             {"LD_PRELOAD=" NO_THREAD, "NO_THREAD=1", "ASAN_OPTIONS=verify_asan_link_order=0"}},
                    Obstacle{"A_second_thread_that_can_not_be_started",
                             {"LD_PRELOAD=" NO_THREAD, "NO_THREAD=2", "ASAN_OPTIONS=verify_asan_link_order=0"}}),
    [](auto const& instance) { return std::string(instance.param.name); });

// What is not severe waits for the writer's next turn: after one turn an error comes long before the next.
TEST_F(Dlt, Gets_an_error_at_once) {
    Dlt_reader viewer;
    auto program = started("wait");
    EXPECT_THAT(texts_until(viewer, "waiting").back(), HasSubstr("waiting"));
    auto quickest = milliseconds::max();
    for (int round = 0; round < 5; ++round) {
        tell(program, 'x');
        texts_until(viewer, "told in detail");
        auto const before = steady_clock::now();
        tell(program, 'e');
        texts_until(viewer, "told of an error");
        quickest = std::min(quickest, std::chrono::duration_cast<milliseconds>(steady_clock::now() - before));
    }
    EXPECT_LT(quickest, milliseconds(50));
}

TEST_F(Dlt, Is_fed_by_a_thread_in_which_no_signal_is_handled) {
    Dlt_reader viewer;
    auto program = started("wait");
    texts_until(viewer, "waiting");
    auto const blocked = blocked_signals_of_writer(program.pid());
    for (int const signal_number : {SIGTERM, SIGINT, SIGABRT, SIGALRM, SIGUSR1}) {
        EXPECT_NE(blocked & 1ULL << (signal_number - 1), 0U) << signal_number;
    }
}

TEST_F(Dlt, That_is_stopped_stops_nobody) {
    Dlt_reader viewer;
    viewer.daemon().signal(SIGSTOP);
    EXPECT_LT(quickest_run(), milliseconds(1500));
    viewer.daemon().signal(SIGCONT);
}

// A program gives it 300 ms, in which it may get no processor on a busy machine.
TEST_F(Dlt, That_reads_again_while_a_program_ends_gets_everything) {
    bool has_come = false;
    for (int round = 0; round < 5 && !has_come; ++round) {
        has_come = has_all_numbers(texts_of_an_end_without_reader());
    }
    EXPECT_TRUE(has_come);
}

TEST_F(Dlt, Says_nothing_on_standard_output) {
    auto program = started("types");
    ASSERT_EQ(program.wait(k_patience), 0);
    char byte = 0;
    EXPECT_EQ(::read(program.output(), &byte, 1), 0);
}

}  // namespace
