#include "bench/task_queue/task_queue.h"

#include <memory>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Task_queue_test : public testing::Test {
 protected:
    bool can_be_read() {
        pollfd source{sut.descriptor(), POLLIN, 0};
        return ::poll(&source, 1, 0) == 1;
    }
    void post(int number) {
        sut.post([this, number] { done.push_back(number); });
    }

    Task_queue sut;
    std::vector<int> done;
};

TEST_F(Task_queue_test, Work_that_posts_work_is_followed_by_it) {
    sut.post([this] { post(1); });
    sut.run_all();
    EXPECT_THAT(done, IsEmpty());
    EXPECT_TRUE(can_be_read());
    sut.run_all();
    EXPECT_THAT(done, ElementsAre(1));
}

TEST_F(Task_queue_test, Closing_throws_away_what_waits_and_what_comes_until_it_is_opened) {
    auto const held = std::make_shared<int>();
    sut.post([held] {});
    sut.close();
    EXPECT_EQ(held.use_count(), 1);
    post(1);
    sut.open();
    post(2);
    sut.run_all();
    EXPECT_THAT(done, ElementsAre(2));
}

}  // namespace
}  // namespace bench
