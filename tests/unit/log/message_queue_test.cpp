#include "ara/log/message_queue.h"

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace ara::log {
namespace {

bool push(Message_queue& sut, std::string const& text, LogLevel level = LogLevel::kInfo) {
    Message_header header{};
    header.size = static_cast<std::uint16_t>(text.size());
    header.level = level;
    return sut.push(header, text.data());
}

std::string pop(Message_queue& sut) {
    Queued_message message;
    return sut.pop(message) ? std::string(message.arguments.data(), message.header.size) : "nothing";
}

TEST(Message_queue, Gives_messages_in_the_order_in_which_they_came) {
    Message_queue sut;
    push(sut, "one");
    push(sut, "two");
    EXPECT_EQ(pop(sut), "one");
    EXPECT_EQ(pop(sut), "two");
    EXPECT_EQ(pop(sut), "nothing");
}

TEST(Message_queue, Carries_long_messages_over_several_slots_and_round_its_end) {
    Message_queue sut;
    for (std::size_t round = 0; round < 3 * Message_queue::k_slots; ++round) {
        std::string const text(1 + (round * 37) % Argument_encoder::k_capacity, static_cast<char>('a' + round % 26));
        ASSERT_TRUE(push(sut, text));
        ASSERT_EQ(pop(sut), text);
    }
}

TEST(Message_queue, Refuses_what_does_not_fit_and_keeps_the_rest) {
    Message_queue sut;
    std::size_t accepted = 0;
    while (push(sut, "message " + std::to_string(accepted))) {
        ++accepted;
    }
    EXPECT_EQ(accepted, Message_queue::k_slots);
    for (std::size_t number = 0; number < accepted; ++number) {
        ASSERT_EQ(pop(sut), "message " + std::to_string(number));
    }
    EXPECT_TRUE(push(sut, "again"));
}

TEST(Message_queue, Refuses_a_long_message_when_only_a_short_one_fits) {
    Message_queue sut;
    for (std::size_t slot = 0; slot + 1 < Message_queue::k_slots; ++slot) {
        ASSERT_TRUE(push(sut, "x"));
    }
    EXPECT_FALSE(push(sut, std::string(1000, 'x')));
    EXPECT_TRUE(push(sut, "x"));
}

TEST(Message_queue, Keeps_a_quarter_for_what_is_more_than_details) {
    for (auto const detail : {LogLevel::kDebug, LogLevel::kVerbose}) {
        Message_queue sut;
        std::size_t details = 0;
        while (push(sut, "detail", detail)) {
            ++details;
        }
        EXPECT_EQ(details, Message_queue::k_slots - Message_queue::k_kept_slots);
        std::size_t others = 0;
        for (auto const level : {LogLevel::kFatal, LogLevel::kError, LogLevel::kWarn}) {
            others += push(sut, "more", level) ? 1 : 0;
        }
        while (push(sut, "more", LogLevel::kInfo)) {
            ++others;
        }
        EXPECT_EQ(others, Message_queue::k_kept_slots);
        EXPECT_FALSE(push(sut, "fatal", LogLevel::kFatal));
        for (std::size_t taken = 0; taken < Message_queue::k_kept_slots; ++taken) {
            ASSERT_EQ(pop(sut), "detail");
            EXPECT_FALSE(push(sut, "detail", detail)) << "what is kept is given back first";
        }
        ASSERT_EQ(pop(sut), "detail");
        EXPECT_TRUE(push(sut, "detail", detail));
    }
}

TEST(Message_queue, Knows_how_many_slots_are_taken) {
    Message_queue sut;
    push(sut, "short");
    push(sut, std::string(2 * Message_queue::k_slot_data, 'x'));
    EXPECT_EQ(sut.size(), 4U);
    pop(sut);
    EXPECT_EQ(sut.size(), 3U);
}

TEST(Message_queue, Loses_and_mixes_nothing_between_threads) {
    Message_queue sut;
    constexpr int k_threads = 4;
    constexpr int k_messages = 5000;
    std::vector<std::thread> producers;
    for (int thread = 0; thread < k_threads; ++thread) {
        producers.emplace_back([&sut, thread] {
            for (int number = 0; number < k_messages; ++number) {
                std::string text(static_cast<std::size_t>(1 + number % 600), static_cast<char>('A' + thread));
                while (!push(sut, text)) {
                    std::this_thread::yield();
                }
            }
        });
    }
    std::vector<int> next(k_threads, 0);
    for (int received = 0; received < k_threads * k_messages;) {
        auto const text = pop(sut);
        if (text == "nothing") {
            std::this_thread::yield();
            continue;
        }
        auto const thread = static_cast<std::size_t>(text[0] - 'A');
        ASSERT_EQ(text, std::string(static_cast<std::size_t>(1 + next[thread] % 600), text[0]));
        ++next[thread];
        ++received;
    }
    for (auto& producer : producers) {
        producer.join();
    }
}

}  // namespace
}  // namespace ara::log
