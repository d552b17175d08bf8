#include "status/driver_status.h"
#include "status/network_status.h"
#include "status/server_status.h"
#include "status/services_status.h"
#include "written_page.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace status {
namespace {

using statectl::Snapshot;
using statectl::text_of;

class Status_readers : public Written_page {};

using Ending = std::atomic<bool>;

// Each writer keeps something true of every moment between two changes.

void drive(Ending const& is_over) {
    for (std::uint64_t i = 0; !is_over; ++i) {
        transition(i % 8, (i + 1) % 8, 0);
        beat(i % 2 == 0, i % 2 == 0);
    }
}

void serve_clients(Ending const& is_over) {
    for (std::uint64_t i = 0; !is_over; ++i) {
        int const connection = static_cast<int>(i % 3) + 10;
        client_connected(connection, std::string(8 * (i % 5 + 1), static_cast<char>('a' + i % 5)), "kOn");
        request_began("kOn", std::chrono::steady_clock::now());
        client_asked(connection);
        client_answered(connection, "kOn", 0);
        request_ended(Answer::in_time);
        client_left(connection);
    }
}

void serve_applications(Ending const& is_over) {
    std::vector<std::uint8_t> const all(7, 0xff);
    while (!is_over) {
        com_requested("1", all, 5);
        com_released("1", all);
    }
}

void report_network(Ending const& is_over) {
    std::vector<std::uint8_t> bytes(16);
    for (std::uint64_t i = 0; !is_over; ++i) {
        bytes.assign(bytes.size(), static_cast<std::uint8_t>(i));
        network_state(bytes.data(), bytes.size());
    }
}

void expect_consistent(Snapshot const& page) {
    EXPECT_EQ(page.driver.state, page.driver.transitions % 8);
    EXPECT_EQ(page.driver.prepare_sd, page.driver.forced);
    EXPECT_LE(page.server.unanswered, page.server.asked);
    for (auto const& client : page.clients) {
        auto const name = text_of(client.name);
        EXPECT_EQ(name, std::string(name.size(), name[0]));
        EXPECT_EQ(name.size(), 8U * (static_cast<unsigned>(name[0] - 'a') + 1));
    }
    for (auto const& name : page.names) {
        EXPECT_LE(name.in_time, name.asked);
        EXPECT_LE(name.asked - name.in_time, 1U);
    }
    constexpr std::uint64_t k_all = 0xffffff'ffffffffU;
    EXPECT_THAT(page.instances.at(0).cab, testing::AnyOf(0U, k_all));
    EXPECT_EQ(page.instances[0].cab != 0, page.instances[0].since[1] != 0);
    auto const bits = statectl::bytes_of(page.network.state);
    EXPECT_EQ(bits, std::vector<std::uint8_t>(bits.size(), bits.empty() ? std::uint8_t{0} : bits[0]));
}

// Of a ring, what is told is in the order in which it was written.
void expect_ordered(Snapshot const& page) {
    std::uint64_t to = 8;
    for (auto const& event : page.events) {
        if (event.kind == static_cast<std::uint64_t>(Event_kind::transition)) {
            EXPECT_TRUE(to == 8 || event.numbers[0] == to);
            to = event.numbers[1];
        }
    }
}

TEST_F(Status_readers, See_each_part_as_it_was_at_one_moment_while_all_are_written) {
    provided(Hold::com_alive, {"1"});
    Ending is_over{false};
    std::vector<std::thread> writers;
    for (auto* const write : {drive, serve_clients, serve_applications, report_network}) {
        writers.emplace_back(write, std::cref(is_over));
    }
    auto const look = [this] {
        for (int i = 0; i < LOOKS; ++i) {
            auto const page = read(100);
            if (!page.is_half_written) {
                expect_consistent(page);
            }
            expect_ordered(page);
        }
    };
    std::thread second_reader(look);
    look();
    second_reader.join();
    is_over = true;
    for (auto& writer : writers) {
        writer.join();
    }
    auto const page = read();
    EXPECT_FALSE(page.is_half_written);
    expect_consistent(page);
    EXPECT_GT(page.driver.transitions, 0U);
}

TEST_F(Status_readers, See_that_a_change_is_not_over) {
    {
        Change const change(written->driver.sequence);
        EXPECT_TRUE(read().is_half_written);
    }
    EXPECT_FALSE(read().is_half_written);
}

// The oldest of a full ring may be written over by the next.
TEST_F(Status_readers, Are_told_events_but_the_oldest_of_a_full_ring) {
    for (std::size_t number = 1; number <= 2 * k_events; ++number) {
        key_dropped(1);
        EXPECT_EQ(read().events.size(), std::min<std::size_t>(number, k_events - 1)) << number;
    }
}

TEST_F(Status_readers, Are_told_what_a_writer_left_half_written_and_see_the_rest) {
    transition(0, 1, 0);
    put(written->driver.sequence, own(written->driver.sequence) + 1);
    key_dropped(1);
    auto const page = read();
    EXPECT_TRUE(page.is_half_written);
    EXPECT_EQ(page.driver.state, 1U);
}

// Each of 2,250 records has an odd sequence. With so many pauses for each of them the copy would take a minute.
TEST_F(Status_readers, Look_again_so_often_altogether_and_not_for_each_record) {
    auto* const words = reinterpret_cast<Shared_word*>(written.get());
    for (std::size_t i = 0; i < sizeof(Page) / sizeof(Shared_word); ++i) {
        put(words[i], ~std::uint64_t{0});
    }
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(read(200).is_half_written);
    EXPECT_TRUE(std::chrono::steady_clock::now() - begin < std::chrono::seconds(20));
}

TEST_F(Status_readers, Bear_any_words) {
    auto* const words = reinterpret_cast<Shared_word*>(written.get());
    std::uint64_t random = 1;
    for (std::size_t i = 0; i < sizeof(Page) / sizeof(Shared_word); ++i) {
        random = random * 6364136223846793005U + 1442695040888963407U;
        put(words[i], random);
    }
    EXPECT_LE(read(1).events.size(), 4 * k_events);
    EXPECT_LE(read(1).instances.size(), k_instances);
}

}  // namespace
}  // namespace status
