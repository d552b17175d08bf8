#include "ara/com/dds/threads/strand.h"

#include "ara/com/dds/threads/workers.h"
#include "support/log_capture.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace ara::com::dds {
namespace {

using test_support::logged;
using testing::Contains;

class Strand_test : public testing::Test {
 protected:
    std::shared_ptr<Strand> make_strand() { return std::make_shared<Strand>(workers_); }

    // Waits for what was posted before.
    static void await(Strand& strand) {
        std::promise<void> done;
        strand.post([&done] { done.set_value(); });
        done.get_future().wait();
    }

    std::promise<void> open_;
    std::shared_future<void> const gate_{open_.get_future()};
    Workers workers_;  // ends before what its tasks use
};

TEST_F(Strand_test, Tasks_run_in_their_order) {
    auto const sut = make_strand();
    std::vector<int> seen;
    for (int number = 0; number < 1000; ++number) {
        sut->post([&seen, number] { seen.push_back(number); });
    }
    await(*sut);
    EXPECT_EQ(seen.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TEST_F(Strand_test, Tasks_run_on_another_thread) {
    auto const sut = make_strand();
    std::thread::id runner;
    sut->post([&runner] { runner = std::this_thread::get_id(); });
    await(*sut);
    EXPECT_NE(runner, std::this_thread::get_id());
}

TEST_F(Strand_test, A_strand_that_waits_holds_up_no_other) {
    std::vector<std::shared_ptr<Strand>> waiting;
    for (int number = 0; number < 20; ++number) {
        waiting.push_back(make_strand());
        waiting.back()->post([this] { gate_.wait(); });
    }
    auto const sut = make_strand();
    await(*sut);
    open_.set_value();
}

TEST_F(Strand_test, Threads_are_used_again) {
    std::set<std::thread::id> runners;
    for (int number = 0; number < 100; ++number) {
        auto const sut = make_strand();
        sut->post([&runners] { runners.insert(std::this_thread::get_id()); });
        await(*sut);
    }
    // One that has just done its task may not be idle yet.
    EXPECT_LT(runners.size(), 50U);
}

TEST_F(Strand_test, A_task_that_throws_is_logged_and_not_the_last) {
    test_support::Log_capture log;
    auto const sut = make_strand();
    sut->post([] { throw std::runtime_error("on purpose"); });
    await(*sut);
    EXPECT_THAT(log.messages(),
                Contains(logged(ara::log::LogLevel::kError, "A handler of the communication threw ", "on purpose")));
}

TEST_F(Strand_test, Closing_waits_for_the_task_that_runs) {
    auto const sut = make_strand();
    std::promise<void> begun;
    std::atomic<bool> ended{false};
    sut->post([&] {
        begun.set_value();
        gate_.wait();
        ended = true;
    });
    begun.get_future().wait();
    std::thread opening([this] { open_.set_value(); });
    sut->close();
    EXPECT_TRUE(ended);
    opening.join();
}

TEST_F(Strand_test, Nothing_runs_after_closing) {
    auto const sut = make_strand();
    sut->close();
    sut->close();
    std::atomic<bool> ran{false};
    sut->post([&ran] { ran = true; });
    auto const witness = make_strand();
    await(*witness);
    workers_.stop();
    EXPECT_FALSE(ran);
}

TEST_F(Strand_test, A_task_may_close_its_strand_and_so_drops_the_others) {
    auto const sut = make_strand();
    std::promise<void> done;
    std::atomic<bool> second{false};
    sut->post([&] {
        gate_.wait();
        sut->close();
        done.set_value();
    });
    sut->post([&second] { second = true; });
    open_.set_value();
    done.get_future().wait();
    workers_.stop();
    EXPECT_FALSE(second);
}

TEST_F(Strand_test, What_a_task_holds_goes_with_it) {
    auto const sut = make_strand();
    auto held = std::make_shared<int>(1);
    std::weak_ptr<int> const watched = held;
    sut->post([held = std::move(held)] {});
    await(*sut);
    EXPECT_TRUE(watched.expired());
}

TEST_F(Strand_test, The_end_of_the_workers_drops_what_waits) {
    auto const sut = make_strand();
    await(*sut);
    workers_.stop();
    workers_.stop();
    sut->post([] { ADD_FAILURE(); });
    sut->close();
}

}  // namespace
}  // namespace ara::com::dds
