#include "client_state_notifier/request_slot.h"

#include "utilities/messages.h"

#include <chrono>
#include <thread>

#include <gmock/gmock.h>
#include <poll.h>

namespace client_state_notifier {
namespace {

using testing::ElementsAre;
using utilities::Type_length_value;

State_change_request request_for(std::string const& state) {
    return {state, [](auto const& /*name*/) { return true; }, [](auto, auto const&) {}, {}, 0};
}

class Request_slot_of_a_server : public testing::Test {
 protected:
    bool is_rung() const {
        pollfd bell{sut.bell().descriptor(), POLLIN, 0};
        return ::poll(&bell, 1, 0) == 1;
    }
    bool is_woken() const { return sut.wake_up_end().poll(POLLIN, 0).second; }
    utilities::Type_length_values wake_up() const { return utilities::receive_type_length_values(sut.wake_up_end()); }

    Request_slot sut;
};

TEST_F(Request_slot_of_a_server, Has_no_request_at_first) {
    EXPECT_FALSE(sut.take());
    EXPECT_FALSE(is_woken());
}

TEST_F(Request_slot_of_a_server, Wakes_the_thread_with_the_word_for_a_request) {
    sut.put(request_for("kPrepSD"));
    EXPECT_THAT(wake_up(), ElementsAre(Type_length_value("state_change_request_added")));
    EXPECT_FALSE(is_woken());
}

TEST_F(Request_slot_of_a_server, Wakes_the_thread_with_the_word_for_its_end) {
    sut.stop();
    EXPECT_THAT(wake_up(), ElementsAre(Type_length_value("terminate")));
}

TEST_F(Request_slot_of_a_server, Tells_the_thread_to_go_on_or_to_end) {
    sut.put(request_for("kPrepSD"));
    EXPECT_TRUE(sut.receive_wake_up());
    sut.stop();
    EXPECT_FALSE(sut.receive_wake_up());
}

// What the first word says counts; the end is known without a word as well.
TEST_F(Request_slot_of_a_server, Takes_all_wake_ups_that_have_come_in_one_call) {
    sut.put(request_for("kPrepSD"));
    sut.put(request_for("kOn"));
    EXPECT_TRUE(sut.receive_wake_up());
    EXPECT_FALSE(is_woken());
    sut.put(request_for("kPrepSD"));
    sut.stop();
    EXPECT_TRUE(sut.receive_wake_up());
    EXPECT_FALSE(is_woken());
    EXPECT_TRUE(sut.is_stopped());
}

TEST_F(Request_slot_of_a_server, Hands_a_request_out_once) {
    sut.put(request_for("kPrepSD"));
    EXPECT_EQ(sut.take()->state, "kPrepSD");
    EXPECT_FALSE(sut.take());
}

TEST_F(Request_slot_of_a_server, Keeps_the_newest_of_several_requests) {
    sut.put(request_for("kPrepSD"));
    sut.put(request_for("kOn"));
    EXPECT_EQ(sut.take()->state, "kOn");
    EXPECT_FALSE(sut.take());
}

TEST_F(Request_slot_of_a_server, Numbers_the_requests_and_knows_the_newest) {
    sut.put(request_for("kPrepSD"));
    auto const first = sut.take()->request_number;
    EXPECT_TRUE(sut.is_newest(first));
    sut.put(request_for("kOn"));
    EXPECT_FALSE(sut.is_newest(first)) << "although it has not been taken yet";
    EXPECT_EQ(sut.take()->request_number, first + 1);
}

// The thread may have ended, and nobody reads the channel.
TEST_F(Request_slot_of_a_server, Never_holds_up_its_caller_and_ends_the_thread_through_a_full_channel) {
    for (int i = 0; i < 20'000; ++i) {
        sut.put(request_for("kOn"));
    }
    sut.stop();
    EXPECT_TRUE(is_rung());
    EXPECT_TRUE(sut.is_stopped());
}

TEST_F(Request_slot_of_a_server, Rings_at_the_end_and_not_for_a_request_that_the_channel_takes) {
    sut.put(request_for("kPrepSD"));
    EXPECT_FALSE(is_rung());
    EXPECT_FALSE(sut.is_stopped());
    sut.stop();
    EXPECT_TRUE(is_rung());
    EXPECT_TRUE(sut.is_stopped());
}

TEST_F(Request_slot_of_a_server, Forgets_all_wake_ups_and_half_a_word_but_no_request) {
    for (int i = 0; i < 20'000; ++i) {
        sut.put(request_for("kOn"));
    }
    std::uint32_t half = 0;
    sut.wake_up_end().recvl(&half, sizeof half, 0);

    sut.forget_wake_ups();

    EXPECT_FALSE(is_woken());
    EXPECT_FALSE(is_rung());
    EXPECT_EQ(sut.take()->state, "kOn");
    sut.put(request_for("kPrepSD"));
    EXPECT_TRUE(sut.receive_wake_up());
}

TEST_F(Request_slot_of_a_server, Gives_a_request_to_who_waits_for_one) {
    std::thread caller([this] { sut.put(request_for("kPrepSD")); });
    EXPECT_EQ(sut.wait(std::chrono::steady_clock::time_point::max())->state, "kPrepSD");
    caller.join();
}

TEST_F(Request_slot_of_a_server, Gives_nothing_to_who_waits_when_it_is_the_end) {
    std::thread caller([this] { sut.stop(); });
    EXPECT_FALSE(sut.wait(std::chrono::steady_clock::time_point::max()));
    caller.join();
}

TEST_F(Request_slot_of_a_server, Gives_nothing_to_who_waits_when_the_time_has_come) {
    EXPECT_FALSE(sut.wait(std::chrono::steady_clock::now() + std::chrono::milliseconds(1)));
    EXPECT_FALSE(sut.is_stopped());
}

}  // namespace
}  // namespace client_state_notifier
