// What arrives of the messages of a program, and how long it takes.

#include "dlt_fixture.h"
#include "support/eventually.h"

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>

namespace log_test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::MatchesRegex;

// Who waits as long as the log may at the end (2 s), or for the writer's next turn (100 ms), is above these bounds each
// time. So is who gets no processor for that long, which may happen twice in five times.
constexpr milliseconds k_short_run{1800};
constexpr milliseconds k_at_once{90};
constexpr int k_most_of_five{3};

/// With what a busy program does.
class Dlt_messages : public Dlt {
 protected:
    // How many of five times took less than that.
    template <class Action>
    static int in_time_of_five(Action const& action, milliseconds limit) {
        int in_time = 0;
        for (int round = 0; round < 5; ++round) {
            in_time += action() < limit ? 1 : 0;
        }
        return in_time;
    }

    int short_runs_of_five() {
        auto const time = [this] {
            auto const before = steady_clock::now();
            run("many");
            return steady_clock::now() - before;
        };
        return in_time_of_five(time, k_short_run);
    }

    // From then on nothing is logged any more, and what the log daemon has not taken lies with its client.
    static void await_end_of_writer(pid_t program) {
        EXPECT_TRUE(test_support::eventually([program] { return !has_writer(program); }));
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

    // Those that each thread but the program's own blocks.
    static std::uint64_t blocked_signals_of_others(pid_t program) {
        std::uint64_t blocked = ~0ULL;
        for (auto const& thread : std::filesystem::directory_iterator("/proc/" + std::to_string(program) + "/task")) {
            std::ifstream status(thread.path() / "status");
            std::string line;
            while (std::getline(status, line) && line.rfind("SigBlk:", 0) != 0) {
            }
            if (thread.path().filename() != std::to_string(program)) {
                blocked &= line.empty() ? 0 : std::stoull(line.substr(7), nullptr, 16);
            }
        }
        return blocked;
    }

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
};

TEST_F(Dlt_messages, Shows_each_argument_in_its_order) {
    Dlt_reader viewer;
    run("types");
    EXPECT_THAT(texts_until(viewer, k_last_words),
                Contains(MatchesRegex("DFLT types text 1 -8 -16 -32 -9223372036854775808 8 16 32 18446744073709551615 "
                                      "be.ef")));
}

TEST_F(Dlt_messages, Shows_the_context_of_a_logger) {
    Dlt_reader viewer;
    run("types");
    EXPECT_THAT(texts_until(viewer, k_last_words), Contains("OTHR from another context"));
}

TEST_F(Dlt_messages, Shows_what_was_logged_before_and_after_its_time) {
    Dlt_reader viewer;
    run("");
    auto const texts = texts_until(viewer, k_last_words);
    EXPECT_THAT(texts, Contains("DFLT before logging was initialised"));
    EXPECT_THAT(texts, Contains(std::string("DFLT ") + k_last_words));
}

TEST_F(Dlt_messages, Says_how_much_of_a_long_message_was_cut) {
    Dlt_reader viewer;
    run("long");
    EXPECT_THAT(texts_until(viewer, k_last_words), Contains(MatchesRegex("DFLT xxx.*x .[0-9]+ bytes cut.")));
}

TEST_F(Dlt_messages, Loses_nothing_of_a_busy_program) {
    Dlt_reader viewer;
    auto program = started("wait");
    texts_until(viewer, "waiting");
    for (int const first : {0, 1000}) {
        tell(program, 'm');
        auto const texts = texts_until(viewer, "number " + std::to_string(first + 999));
        EXPECT_TRUE(has_all_numbers(texts, first)) << testing::PrintToString(texts);
    }
}

// What is not severe waits for the writer's next turn: after one turn an error comes long before the next.
TEST_F(Dlt_messages, Gets_an_error_at_once) {
    Dlt_reader viewer;
    auto program = started("wait");
    EXPECT_THAT(texts_until(viewer, "waiting").back(), HasSubstr("waiting"));
    auto const time = [&] {
        tell(program, 'x');
        texts_until(viewer, "told in detail");
        auto const before = steady_clock::now();
        tell(program, 'e');
        texts_until(viewer, "told of an error");
        return steady_clock::now() - before;
    };
    EXPECT_GE(in_time_of_five(time, k_at_once), k_most_of_five);
}

TEST_F(Dlt_messages, Is_fed_by_threads_in_which_no_signal_is_handled) {
    Dlt_reader viewer;
    auto program = started("wait");
    texts_until(viewer, "waiting");
    auto const blocked = blocked_signals_of_others(program.pid());
    for (int const signal_number : {SIGTERM, SIGINT, SIGABRT, SIGALRM, SIGUSR1}) {
        EXPECT_NE(blocked & 1ULL << (signal_number - 1), 0U) << signal_number;
    }
}

TEST_F(Dlt_messages, Is_not_waited_for_at_the_end_of_a_program) {
    EXPECT_GE(short_runs_of_five(), k_most_of_five);
}

TEST_F(Dlt_messages, That_is_stopped_stops_nobody) {
    Dlt_reader viewer;
    viewer.daemon().signal(SIGSTOP);
    EXPECT_GE(short_runs_of_five(), k_most_of_five);
    viewer.daemon().signal(SIGCONT);
}

// A program gives it 300 ms, in which it may get no processor on a busy machine: once in five.
TEST_F(Dlt_messages, That_reads_again_while_a_program_ends_gets_everything) {
    int complete = 0;
    for (int round = 0; round < 5; ++round) {
        complete += has_all_numbers(texts_of_an_end_without_reader()) ? 1 : 0;
    }
    EXPECT_GE(complete, 4);
}

TEST_F(Dlt_messages, Says_nothing_on_standard_output) {
    auto program = started("types");
    ASSERT_EQ(program.wait(k_patience), 0);
    char byte = 0;
    EXPECT_EQ(::read(program.output(), &byte, 1), 0);
}

}  // namespace
}  // namespace log_test
