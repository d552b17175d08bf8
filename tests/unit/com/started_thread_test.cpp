#include "ara/com/dds/threads/started_thread.h"

#include "support/log_capture.h"

#include <cstddef>
#include <optional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

namespace ara::com::dds {
namespace {

/// While it lives no thread can be started: there is no room for the stacks.
class No_room_for_threads {
 public:
    No_room_for_threads() {
        ::pthread_getattr_default_np(&before_);
        pthread_attr_t attributes;
        ::pthread_attr_init(&attributes);
        EXPECT_EQ(::pthread_attr_setstacksize(&attributes, std::size_t{1} << 47), 0);
        EXPECT_EQ(::pthread_setattr_default_np(&attributes), 0);
        ::pthread_attr_destroy(&attributes);
    }
    ~No_room_for_threads() {
        ::pthread_setattr_default_np(&before_);
        ::pthread_attr_destroy(&before_);
    }
    No_room_for_threads(No_room_for_threads const&) = delete;
    No_room_for_threads& operator=(No_room_for_threads const&) = delete;

 private:
    pthread_attr_t before_{};
};

TEST(Started_thread, Runs_what_it_was_given_and_is_the_callers_to_join) {
    bool ran = false;
    auto sut = started_thread([&ran] { ran = true; });
    sut.join();
    EXPECT_TRUE(ran);
}

TEST(Started_thread, That_can_t_be_had_is_an_exception_of_the_binding) {
    No_room_for_threads const full;
    EXPECT_THROW(started_thread([] {}), tarq::com::Infrastructure_exception);
}

TEST(Start_with_patience, Waits_until_there_is_a_thread_and_tells_of_it_once_and_once_that_it_came) {
    test_support::Log_capture log;
    std::thread thread;
    auto full = std::make_optional<No_room_for_threads>();
    int tries = 0;
    start_with_patience([&] {
        if (++tries == 3) {
            full.reset();
        }
        thread = started_thread([] {});
    });
    ASSERT_TRUE(thread.joinable());
    thread.join();
    EXPECT_EQ(tries, 3);
    using ara::log::LogLevel;
    using test_support::logged;
    EXPECT_THAT(
        log.at_least(LogLevel::kInfo),
        testing::ElementsAre(
            logged(LogLevel::kError,
                   "The communication waits: ", "There can be no thread: Resource temporarily unavailable"),
            logged(LogLevel::kInfo, "The communication has the thread that it waited for; failures before: ", 2U)));
}

}  // namespace
}  // namespace ara::com::dds
