#include "ara/com/dds/offers/process_watch.h"

#include "ara/com/dds/offers/process_space.h"
#include "idle_process.h"
#include "support/open_descriptors.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <iterator>
#include <memory>
#include <mutex>
#include <vector>

#include <gmock/gmock.h>

namespace ara::com::dds {
namespace {

using com_unit::Idle_process;
using testing::ElementsAre;

class Process_watch_test : public testing::Test {
 protected:
    std::vector<pid_t> await(std::size_t count) {
        std::unique_lock lock(mutex_);
        told_.wait_for(lock, std::chrono::seconds(10), [&] { return ended_.size() >= count; });
        return ended_;
    }

    // No process is told of twice for the events that are under way.
    std::vector<pid_t> await_silence(std::size_t count) {
        await(count);
        Idle_process last;
        sut_.watch(last.id());
        last.kill();
        auto ended = await(count + 1);
        EXPECT_EQ(ended.back(), last.id());
        ended.pop_back();
        return ended;
    }

    std::mutex mutex_;
    std::condition_variable told_;
    std::vector<pid_t> ended_;
    Process_watch sut_{[this](pid_t process) {
        std::lock_guard const lock(mutex_);
        ended_.push_back(process);
        told_.notify_all();
    }};
};

TEST_F(Process_watch_test, The_end_of_a_process_is_told) {
    Idle_process process;
    EXPECT_TRUE(sut_.watch(process.id()));
    process.kill();
    EXPECT_THAT(await(1), ElementsAre(process.id()));
}

TEST_F(Process_watch_test, A_process_that_has_gone_is_not_watched) {
    Idle_process process;
    process.end();
    EXPECT_FALSE(sut_.watch(process.id()));
}

TEST_F(Process_watch_test, The_end_is_told_once_however_often_it_is_watched) {
    Idle_process process;
    EXPECT_TRUE(sut_.watch(process.id()));
    EXPECT_TRUE(sut_.watch(process.id()));
    process.kill();
    EXPECT_THAT(await_silence(1), ElementsAre(process.id()));
}

// A copy of the descriptor keeps the kernel's interest alive, and a process that is just being started has one.
TEST_F(Process_watch_test, The_end_is_told_once_also_while_another_process_has_copies_of_everything) {
    Idle_process process;
    EXPECT_TRUE(sut_.watch(process.id()));
    Idle_process const copy;
    process.kill();
    EXPECT_THAT(await_silence(1), ElementsAre(process.id()));
}

TEST_F(Process_watch_test, Several_processes_are_watched) {
    Idle_process one;
    Idle_process two;
    EXPECT_TRUE(sut_.watch(one.id()));
    EXPECT_TRUE(sut_.watch(two.id()));
    two.kill();
    await(1);
    one.kill();
    EXPECT_THAT(await(2), ElementsAre(two.id(), one.id()));
}

TEST_F(Process_watch_test, Sixty_four_processes_are_watched_at_most) {
    std::vector<std::unique_ptr<Idle_process>> processes;
    auto const descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    Idle_process first;
    sut_.watch(first.id());
    auto const with_one = descriptors();
    for (int number = 0; number < 70; ++number) {
        processes.push_back(std::make_unique<Idle_process>());
        EXPECT_TRUE(sut_.watch(processes.back()->id()));
    }
    EXPECT_EQ(descriptors(), with_one + 63);
}

// It takes one for the process, and two for its thread.
TEST_F(Process_watch_test, What_finds_no_descriptor_is_watched_when_it_is_asked_for_again) {
    Idle_process process;
    for (std::size_t const left : {0U, 1U, 2U}) {
        test_support::Descriptors_left const few(left);
        EXPECT_TRUE(sut_.watch(process.id()));
    }
    EXPECT_TRUE(sut_.watch(process.id()));
    process.kill();
    EXPECT_THAT(await(1), ElementsAre(process.id()));
}

TEST_F(Process_watch_test, A_watch_may_end_before_the_process) {
    Idle_process process;
    Process_watch watch([](pid_t) { ADD_FAILURE(); });
    EXPECT_TRUE(watch.watch(process.id()));
}

TEST(Process_space, Is_the_same_for_all_of_a_process) {
    EXPECT_FALSE(process_space().empty());
    EXPECT_EQ(process_space(), process_space());
    EXPECT_LT(process_space().size(), 128U);
}

}  // namespace
}  // namespace ara::com::dds
