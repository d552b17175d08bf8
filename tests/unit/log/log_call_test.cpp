#include "ara/log/log_engine.h"
#include "support/log_capture.h"
#include "support/log_tap.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <ratio>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <sys/time.h>

namespace {

using ara::log::LogLevel;
using test_support::logged;
using test_support::logged_in;
using testing::ElementsAre;

TEST(Log_call, Makes_one_message_of_everything_streamed) {
    test_support::Log_capture log;
    ara::log::LogInfo() << "text" << std::string(" more ") << 7 << true << std::uint8_t{255}
                        << std::vector<std::uint8_t>{1, 2};
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "text", " more ", 7, true, 255U, test_support::Bytes{1, 2})));
}

TEST(Log_call, Carries_the_level_of_its_function) {
    test_support::Log_capture log;
    ara::log::LogFatal() << "1";
    ara::log::LogError() << "2";
    ara::log::LogWarn() << "3";
    ara::log::LogInfo() << "4";
    ara::log::LogDebug() << "5";
    ara::log::LogVerbose() << "6";
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kFatal, "1"), logged(LogLevel::kError, "2"),
                                            logged(LogLevel::kWarn, "3"), logged(LogLevel::kInfo, "4"),
                                            logged(LogLevel::kDebug, "5"), logged(LogLevel::kVerbose, "6")));
}

TEST(Log_call, Names_the_context_of_its_logger) {
    test_support::Log_capture log;
    ara::log::CreateLogger("SNCC", "Notification").LogWarn() << "here";
    EXPECT_THAT(log.messages(), ElementsAre(logged_in("SNCC", LogLevel::kWarn, "here")));
}

TEST(Log_call, Gives_the_same_logger_for_the_same_context) {
    EXPECT_EQ(&ara::log::CreateLogger("SAME", "first"), &ara::log::CreateLogger("SAME", "second"));
}

TEST(Log_call, Knows_contexts_by_their_first_four_characters) {
    EXPECT_EQ(&ara::log::CreateLogger("LONGER", "first"), &ara::log::CreateLogger("LONG", "second"));
}

TEST(Log_call, Is_kept_at_every_level_before_logging_is_initialised) {
    EXPECT_TRUE(ara::log::Log_engine::instance().default_logger().context().logs(LogLevel::kVerbose));
}

TEST(Log_call, Survives_a_null_text) {
    test_support::Log_capture log;
    char const* const nothing = nullptr;
    ara::log::LogInfo() << nothing;
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "(null)")));
}

// DLT's time: units of 0.1 ms since boot.
TEST(Log_call, Carries_the_time_at_which_it_was_made) {
    using Tenths_of_milliseconds = std::chrono::duration<std::int64_t, std::ratio<1, 10'000>>;
    auto const now = [] {
        auto const since_boot = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint32_t>(std::chrono::duration_cast<Tenths_of_milliseconds>(since_boot).count());
    };
    std::vector<std::uint32_t> times;
    test_support::Log_tap const tap([&times](auto const& message) { times.push_back(message.header.timestamp); });
    auto const before = now();
    ara::log::LogInfo() << "now";
    auto const after = now();
    ara::log::Log_engine::instance().drain();
    EXPECT_THAT(times, ElementsAre(testing::AllOf(testing::Ge(before), testing::Le(after))));
}

TEST(Log_call, Loses_nothing_between_threads) {
    test_support::Log_capture log;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (int number = 0; number < 1000; ++number) {
                ara::log::LogInfo() << thread << number;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(log.messages().size(), 4000U);
}

std::atomic<int> handled{0};

void log_from_handler(int /*signal*/) {
    ara::log::LogInfo() << "from the handler" << ++handled;
}

TEST(Log_call, Can_be_interrupted_by_a_signal_handler_that_logs) {
    test_support::Log_capture log;
    handled = 0;
    struct sigaction action {};
    action.sa_handler = log_from_handler;
    struct sigaction before {};
    ASSERT_EQ(::sigaction(SIGALRM, &action, &before), 0);
    itimerval const every_100_us{{0, 100}, {0, 100}};
    ASSERT_EQ(::setitimer(ITIMER_REAL, &every_100_us, nullptr), 0);
    int logged_here = 0;
    while (handled < 3000) {
        ara::log::LogInfo() << "from the loop" << ++logged_here << "with some more to encode";
    }
    itimerval const never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(log.messages().size(), static_cast<std::size_t>(logged_here + handled));
}

}  // namespace
