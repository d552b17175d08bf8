#include "ara/com/dds/calls/pending_calls.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace ara::com::dds {
namespace {

Clock::time_point at(int time) {
    return Clock::time_point(std::chrono::seconds(time));
}

struct Ignored_reply : Pending_reply {
    void succeed(void const* /*reply*/) override {}
    void fail(std::exception_ptr /*cause*/) override {}
};

/// One call, and what is expected of it.
struct Expected_call {
    std::int64_t number;
    Pending_reply* reply;
    int deadline;
    bool lost;
};

std::vector<Pending_reply*> addresses(Pending_calls::Replies const& replies) {
    std::vector<Pending_reply*> addresses;
    for (auto const& reply : replies) {
        addresses.push_back(reply.get());
    }
    return addresses;
}

// Deadlines in any order: a look at the next of them finds those that are over, no others, and no more than once.
TEST(Pending_calls_test, Each_call_ends_at_its_own_time_whatever_the_order_in_which_they_were_made) {
    std::mt19937 random(1);
    auto const draw = [&random](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
    for (int round = 0; round < 200; ++round) {
        Pending_calls sut;
        std::vector<Expected_call> calls;
        for (int count = draw(8); count > 0; --count) {
            auto reply = std::make_unique<Ignored_reply>();
            auto* const address = reply.get();
            auto const deadline = draw(10);
            calls.push_back({sut.add(std::move(reply), at(deadline)), address, deadline, false});
        }
        if (!calls.empty() && draw(2) == 0) {
            auto const place = calls.begin() + draw(static_cast<int>(calls.size()));
            EXPECT_EQ(sut.take(place->number).get(), place->reply);
            EXPECT_EQ(sut.take(place->number), nullptr);
            calls.erase(place);
        }
        if (draw(2) == 0) {
            auto const until = draw(10);
            sut.lose(at(until));
            for (auto& call : calls) {
                call.lost = until < call.deadline;
                call.deadline = std::min(call.deadline, until);
            }
        }
        for (int now = 0; now < 10; ++now) {
            auto const by_deadline = [](auto const& left, auto const& right) { return left.deadline < right.deadline; };
            auto const first = std::min_element(calls.begin(), calls.end(), by_deadline);
            ASSERT_EQ(sut.next_deadline(),
                      first == calls.end() ? std::nullopt : std::make_optional(at(first->deadline)));
            std::vector<Pending_reply*> unanswered;
            std::vector<Pending_reply*> lost;
            for (auto const& call : calls) {
                if (call.deadline == now) {
                    (call.lost ? lost : unanswered).push_back(call.reply);
                }
            }
            auto const late = sut.take_late(at(now));
            ASSERT_EQ(addresses(late.unanswered), unanswered);
            ASSERT_EQ(addresses(late.lost), lost);
            calls.erase(
                std::remove_if(calls.begin(), calls.end(), [now](auto const& call) { return call.deadline == now; }),
                calls.end());
        }
        EXPECT_TRUE(sut.take_all().empty());
    }
}

}  // namespace
}  // namespace ara::com::dds
