// Sinks that have no room at times. Nobody empties the queue but these tests.

#include "ara/log/exit_patience.h"
#include "ara/log/log_engine.h"
#include "ara/log/logging.h"
#include "keeping_sink.h"

#include <atomic>
#include <cerrno>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <unistd.h>

// Wakes as the C library does, and leaves another errno behind.
static std::atomic<int> wakes{0};
extern "C" int eventfd_write(int descriptor, eventfd_t value) {
    ++wakes;
    auto const written = ::write(descriptor, &value, sizeof value);
    errno = EAGAIN;
    return written == sizeof value ? 0 : -1;
}

// Counts, and refuses when it is told to.
static std::atomic<int> alarms{0};
static std::atomic<bool> refuses_alarms{false};
extern "C" int timerfd_settime(int descriptor, int flags, itimerspec const* when, itimerspec* before) {
    ++alarms;
    if (refuses_alarms) {
        errno = EINVAL;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_timerfd_settime, descriptor, flags, when, before));
}

namespace ara::log {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

class Narrow_sink : public Keeping_sink {
 public:
    using Keeping_sink::Keeping_sink;
    bool has_room() override { return room > 0; }
    void write(Queued_message const& message) override {
        --room;
        Keeping_sink::write(message);
    }
    static inline int room = 0;
};

TEST(Stuck_sink, Leaves_messages_in_the_queue_and_tells_of_drops_when_it_has_room_again) {
    static std::vector<std::string> lines;
    auto& engine = Log_engine::instance();
    engine.add_sink(std::make_unique<Narrow_sink>(lines), LogLevel::kVerbose);
    for (std::size_t number = 0; number < Message_queue::k_slots; ++number) {
        LogDebug() << number;
    }
    LogInfo() << "last words";
    engine.drain();
    EXPECT_THAT(lines, ElementsAre());
    Narrow_sink::room = 2;
    engine.drain();
    EXPECT_THAT(lines, ElementsAre("5 0", "5 1"));
    Narrow_sink::room = 2000;
    engine.drain();
    ASSERT_EQ(lines.size(), Message_queue::k_slots - Message_queue::k_kept_slots + 2);
    EXPECT_EQ(lines[lines.size() - 2], "4 last words");
    EXPECT_EQ(lines.back(), "3 Log queue was full, messages dropped:  256");
}

/// Has room at as many questions as it is told, and at none after.
class Fickle_sink : public Keeping_sink {
 public:
    using Keeping_sink::Keeping_sink;
    bool has_room() override { return yeses-- > 0; }
    static inline int yeses = 0;
};

// Nobody would look again before the next message.
TEST(Stuck_sink, Is_done_with_the_queue_only_when_it_has_told_of_drops_at_whichever_question_its_room_is_lost) {
    static std::vector<std::string> lines;
    auto& engine = Log_engine::instance();
    Narrow_sink::room = 0;
    engine.add_sink(std::make_unique<Fickle_sink>(lines), LogLevel::kVerbose);
    constexpr int k_kept = Message_queue::k_slots - Message_queue::k_kept_slots;
    for (int yeses = k_kept - 1; yeses < k_kept + 5; ++yeses) {
        lines.clear();
        Fickle_sink::yeses = 0;
        engine.drain();
        for (int number = 0; number <= k_kept; ++number) {
            LogDebug() << number;
        }
        Fickle_sink::yeses = yeses;
        if (!engine.drain()) {
            Fickle_sink::yeses = 10'000;
            EXPECT_TRUE(engine.drain());
        }
        ASSERT_EQ(lines.size(), k_kept + 1) << yeses;
        EXPECT_EQ(lines.back(), "3 Log queue was full, messages dropped:  1") << yeses;
    }
    Fickle_sink::yeses = 0;
}

milliseconds waited(std::uint64_t left, std::uint64_t taken_each_time) {
    auto const start = std::chrono::steady_clock::now();
    Exit_patience sut;
    while (left != 0 && sut.waits_for(left)) {
        left -= taken_each_time;
    }
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

TEST(The_end_of_a_process, Waits_a_moment_for_somebody_who_takes_nothing) {
    auto const time = waited(1, 0);
    EXPECT_GE(time, Exit_patience::k_without_progress);
    EXPECT_LT(time, Exit_patience::k_longest);
}

TEST(The_end_of_a_process, Waits_for_somebody_who_takes_a_little_each_time_but_not_for_ever) {
    EXPECT_LT(waited(10, 1), Exit_patience::k_without_progress);
    EXPECT_GE(waited(1'000'000, 1), Exit_patience::k_longest);
}

/// Holds the writer in its first message until it is told to go on.
class Gate : public Log_sink {
 public:
    explicit Gate(std::atomic<std::size_t>& written) : written_(written) {}
    void add_context(Log_context& /*context*/) override {}
    void write(Queued_message const& /*message*/) override {
        if (written_++ == 0) {
            opened.get_future().wait();
        }
    }
    static inline std::promise<void> opened;

 private:
    std::atomic<std::size_t>& written_;
};

TEST(Writer, Is_woken_by_what_is_severe_and_by_a_half_full_queue_and_by_others_later_and_errno_is_kept) {
    static std::atomic<std::size_t> written{0};
    auto const await_written = [](std::size_t messages) {
        while (written < messages) {
            std::this_thread::yield();
        }
    };
    auto& engine = Log_engine::instance();
    Narrow_sink::room = 100'000;
    engine.drain();
    engine.add_sink(std::make_unique<Gate>(written), LogLevel::kVerbose);
    engine.start_writer();
    wakes = 0;

    errno = ENOTTY;
    LogError() << "severe";
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(wakes, 1);
    await_written(1);
    alarms = 0;
    for (std::size_t number = 1; number <= Message_queue::k_slots / 2; ++number) {
        LogInfo() << number;
    }
    EXPECT_EQ(alarms, 1) << "one of so many messages pays for the look at all of them";
    EXPECT_EQ(wakes, 1);
    LogInfo() << "half full";
    EXPECT_EQ(wakes, 2);
    LogInfo() << "woken already";
    EXPECT_EQ(wakes, 2);
    EXPECT_EQ(errno, ENOTTY);

    Gate::opened.set_value();
    await_written(Message_queue::k_slots / 2 + 3);

    refuses_alarms = true;
    errno = ENOTTY;
    LogInfo() << "found at once when there is no alarm";
    EXPECT_EQ(errno, ENOTTY);
    await_written(Message_queue::k_slots / 2 + 4);
    refuses_alarms = false;
    engine.stop_writer();
}

}  // namespace
}  // namespace ara::log
