// Sinks that have no room at times. Nobody empties the queue but these tests.

#include "ara/log/exit_patience.h"
#include "ara/log/log_engine.h"
#include "ara/log/logging.h"
#include "keeping_sink.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ara::log {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

class Narrow_sink : public Keeping_sink {
 public:
    using Keeping_sink::Keeping_sink;
    bool has_room() override { return room != 0; }
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

}  // namespace
}  // namespace ara::log
