#include "bench/process/child_process.h"
#include "bench/vehicle/dlt_reader.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
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
    static Child_process started(std::string const& task) { return {{LOG_PROGRAM, task}, {}}; }

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

TEST_F(Dlt, Lowers_the_level_of_a_context_when_its_viewer_wants_it) {
    Dlt_reader viewer;
    auto program = started("wait");
    EXPECT_THAT(texts_until(viewer, "waiting").back(), HasSubstr("waiting"));
    ASSERT_TRUE(viewer.set_level("PROG", "DFLT", 4));
    auto const deadline = steady_clock::now() + k_patience;
    std::vector<std::string> between;
    do {
        tell(program, 'x');
        texts_until(viewer, "told");
        tell(program, 'x');
        between = texts_until(viewer, "told");
    } while (between.front() != "DFLT told" && steady_clock::now() < deadline);
    EXPECT_THAT(between, testing::ElementsAre("DFLT told"));
}

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
