#include "ara/log/log_engine.h"
#include "ara/log/logging.h"
#include "keeping_sink.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ara::log {
namespace {

using testing::ElementsAre;

// Nobody empties the queue but this test.
TEST(Full_queue, Drops_what_is_new_and_tells_each_time_how_much_was_dropped_once_it_is_empty) {
    static std::vector<std::string> lines;
    Log_engine::instance().add_sink(std::make_unique<Keeping_sink>(lines), LogLevel::kVerbose);
    for (std::size_t const dropped : {976U, 3U}) {
        lines.clear();
        auto const before = LostMessages();
        for (std::size_t number = 0; number < Message_queue::k_slots + dropped; ++number) {
            LogInfo() << number;
        }
        EXPECT_EQ(LostMessages() - before, dropped);
        Log_engine::instance().drain();
        ASSERT_EQ(lines.size(), Message_queue::k_slots + 1);
        EXPECT_EQ(lines.front(), "4 0");
        EXPECT_EQ(lines[Message_queue::k_slots - 1], "4 1023");
        EXPECT_EQ(lines.back(), "3 Log queue was full, messages dropped:  " + std::to_string(dropped));
    }
    lines.clear();
    LogInfo() << "again";
    Log_engine::instance().drain();
    EXPECT_THAT(lines, ElementsAre("4 again"));
}

// Each message that it is handed leads to another one, so that the queue is never empty.
class Chattering_sink : public Log_sink {
 public:
    void add_context(Log_context& /*context*/) override {}
    void write(Queued_message const& /*message*/) override {
        ++written_;
        if (chatters) {
            LogInfo() << "one more";
        }
    }
    static std::size_t written() { return written_; }
    static inline bool chatters = true;

 private:
    static inline std::size_t written_ = 0;
};

TEST(Full_queue, Is_emptied_of_one_queue_s_worth_and_then_others_have_their_turn) {
    Log_engine::instance().add_sink(std::make_unique<Chattering_sink>(), LogLevel::kVerbose);
    LogInfo() << "the first";
    Log_engine::instance().drain();
    EXPECT_EQ(Chattering_sink::written(), Message_queue::k_slots);
    Chattering_sink::chatters = false;
    Log_engine::instance().drain();
    EXPECT_EQ(Chattering_sink::written(), Message_queue::k_slots + 1);
}

}  // namespace
}  // namespace ara::log
