#include "ara/com/dds/threads/call_timer.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

namespace ara::com::dds {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Writes down when it was looked at, and wants a number of further looks at once.
class Calls : public Expiring {
 public:
    explicit Calls(int further_looks = 0) : further_looks_(further_looks) {}

    std::optional<Clock::time_point> expire(Clock::time_point now) override {
        std::lock_guard const lock(mutex_);
        looks_.push_back(now);
        looked_.notify_all();
        return further_looks_-- > 0 ? std::make_optional(now) : std::nullopt;
    }

    std::vector<Clock::time_point> await(std::size_t count) {
        std::unique_lock lock(mutex_);
        looked_.wait_for(lock, seconds(10), [&] { return looks_.size() >= count; });
        return looks_;
    }

 private:
    std::mutex mutex_;
    std::condition_variable looked_;
    int further_looks_;
    std::vector<Clock::time_point> looks_;
};

class Call_timer_test : public testing::Test {
 protected:
    Call_timer_test() { sut_.start(); }
    Call_timer sut_;
};

TEST_F(Call_timer_test, Calls_are_looked_at_when_their_time_is_over) {
    auto const calls = std::make_shared<Calls>();
    auto const deadline = Clock::now() + milliseconds(20);
    sut_.watch(calls, deadline);
    auto const looks = calls->await(1);
    ASSERT_EQ(looks.size(), 1U);
    EXPECT_GE(looks.front(), deadline);
}

TEST_F(Call_timer_test, Calls_are_looked_at_until_they_want_no_more) {
    auto const calls = std::make_shared<Calls>(2);
    sut_.watch(calls, Clock::now());
    EXPECT_EQ(calls->await(3).size(), 3U);
    sut_.stop();
    EXPECT_EQ(calls->await(0).size(), 3U);
}

TEST_F(Call_timer_test, An_earlier_time_is_kept_although_a_later_one_is_waited_for) {
    auto const late = std::make_shared<Calls>();
    auto const early = std::make_shared<Calls>();
    sut_.watch(late, Clock::now() + seconds(60));
    sut_.watch(early, Clock::now());
    EXPECT_EQ(early->await(1).size(), 1U);
    EXPECT_TRUE(late->await(0).empty());
}

TEST_F(Call_timer_test, Calls_that_have_gone_are_left_alone) {
    auto const calls = std::make_shared<Calls>();
    sut_.watch(std::make_shared<Calls>(), Clock::now());
    sut_.watch(calls, Clock::now());
    EXPECT_EQ(calls->await(1).size(), 1U);
}

TEST_F(Call_timer_test, Nothing_is_looked_at_after_the_end) {
    auto const calls = std::make_shared<Calls>();
    sut_.watch(calls, Clock::now() + seconds(60));
    sut_.stop();
    sut_.stop();
    sut_.watch(calls, Clock::now());
    sut_.start();
    EXPECT_TRUE(calls->await(0).empty());
}

}  // namespace
}  // namespace ara::com::dds
