#include "ara/log/log_writer.h"

#include "ara/log/message_queue.h"
#include "support/open_descriptors.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace ara::log {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

/// A queue whose messages are counted by a writer that ends with it. `before` and `after` its look there is a moment.
class Counted_queue {
 public:
    using Moment = std::function<void(Counted_queue&)>;

    explicit Counted_queue(std::chrono::nanoseconds period, Moment before = nothing, Moment after = nothing)
        : before_(std::move(before)), after_(std::move(after)), writer_([this] { return look(); }, period) {
        writer_.start();
    }
    ~Counted_queue() { writer_.stop(); }
    Counted_queue(Counted_queue const&) = delete;
    Counted_queue& operator=(Counted_queue const&) = delete;

    void send(bool is_severe) {
        ASSERT_TRUE(queue_.push(Message_header{}, nullptr));
        if (is_severe) {
            writer_.wake();
        } else {
            writer_.wake_in_a_period();
        }
    }

    static void nothing(Counted_queue& /*queue*/) {}
    unsigned looks() const { return looks_; }
    bool counts(unsigned messages) const {
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (counted_ < messages && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::yield();
        }
        return counted_ >= messages;
    }

 private:
    bool look() {
        ++looks_;
        before_(*this);
        Queued_message message;
        while (queue_.pop(message)) {
            ++counted_;
        }
        bool const is_empty = queue_.size() == 0;
        after_(*this);
        return is_empty;
    }

    Moment const before_;
    Moment const after_;
    Message_queue queue_;
    std::atomic<unsigned> counted_{0};
    std::atomic<unsigned> looks_{0};
    Log_writer writer_;
};

// The first message wakes it; the last is one that no other follows, which would have it found.
TEST(Log_writer, Finds_what_is_sent_at_any_moment_of_its_look) {
    constexpr unsigned k_messages = 3;
    for (bool const is_severe : {false, true}) {
        auto const send_one = [is_severe, left = k_messages](Counted_queue& queue) mutable {
            if (left != 0) {
                --left;
                queue.send(is_severe);
            }
        };
        Counted_queue before(milliseconds(10), send_one);
        before.send(is_severe);
        EXPECT_TRUE(before.counts(1 + k_messages)) << "severe: " << is_severe;
        Counted_queue after(milliseconds(10), Counted_queue::nothing, send_one);
        after.send(is_severe);
        EXPECT_TRUE(after.counts(1 + k_messages)) << "severe: " << is_severe;
    }
}

TEST(Log_writer, Finds_the_messages_of_several_threads_the_last_included) {
    constexpr unsigned k_messages = 500;
    constexpr unsigned k_senders = 3;
    Counted_queue sut(microseconds(20));
    std::vector<std::thread> senders;
    for (unsigned sender = 0; sender < k_senders; ++sender) {
        senders.emplace_back([&sut, sender] {
            for (unsigned message = 1; message <= k_messages; ++message) {
                sut.send((message + sender) % 8 == 0);
                EXPECT_TRUE(sut.counts(message)) << "of this thread at least";
            }
        });
    }
    for (auto& sender : senders) {
        sender.join();
    }
    EXPECT_TRUE(sut.counts(k_senders * k_messages));
}

// With none it has neither of those that wake it, with one no alarm.
TEST(Log_writer, Finds_each_message_where_the_system_has_no_descriptors_left_for_it) {
    for (std::size_t const left : {0U, 1U}) {
        test_support::Descriptors_left const few(left);
        Counted_queue sut(milliseconds(1));
        unsigned sent = 0;
        for (bool const is_severe : {false, true, false, false, true}) {
            sut.send(is_severe);
            EXPECT_TRUE(sut.counts(++sent)) << left;
        }
    }
}

TEST(Log_writer, Does_not_look_while_nothing_was_sent) {
    Counted_queue sut(milliseconds(1));
    sut.send(false);
    ASSERT_TRUE(sut.counts(1));
    auto const before = sut.looks();
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_LE(sut.looks(), before + 1) << "an alarm that was set before its first look rings once more";
}

}  // namespace
}  // namespace ara::log
