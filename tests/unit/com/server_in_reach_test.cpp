#include "ara/com/dds/calls/server_in_reach.h"

#include <chrono>
#include <memory>
#include <ostream>

#include <gmock/gmock.h>

namespace ara::com::dds {
namespace {

using std::chrono::steady_clock;
using std::chrono::system_clock;

// Nobody looks into it here.
std::shared_ptr<Call_path> a_path() {
    auto const owner = std::make_shared<char>();
    return {owner, static_cast<Call_path*>(static_cast<void*>(owner.get()))};
}

Known_offer offered_by(std::uint8_t participant, int since = 1, std::uint64_t found = 0, bool is_awaited = false) {
    Known_offer offer{
        "an::Interface", "app", {participant}, 0, system_clock::time_point(std::chrono::seconds(since)), found};
    if (is_awaited) {
        offer.awaited_until = steady_clock::time_point(std::chrono::seconds(100));
    }
    return offer;
}

class Server_in_reach_test : public testing::Test {
 protected:
    Server_in_reach_test() { sut_.open(a_path()); }

    Server_in_reach::Loss follow(Known_offer_list const& offers) {
        auto path = sut_.needs_new_path(offers) ? a_path() : nullptr;
        return sut_.follow(offers, path);
    }
    void reach() {
        auto const candidate = sut_.candidate(0);
        ASSERT_TRUE(candidate);
        sut_.set_reached(*candidate);
        ASSERT_TRUE(sut_.is_reached());
    }

    Server_in_reach sut_;
};

struct Choice {
    char const* why;
    Known_offer better;
    Known_offer worse;
};

void PrintTo(Choice const& choice, std::ostream* out) {
    *out << choice.why;
}

class Server_choice : public Server_in_reach_test, public testing::WithParamInterface<Choice> {};

TEST_P(Server_choice, Does_not_depend_on_the_order_of_offers) {
    for (auto const& offers : {Known_offer_list{GetParam().better, GetParam().worse},
                               Known_offer_list{GetParam().worse, GetParam().better}}) {
        Server_in_reach sut;
        sut.open(a_path());
        std::shared_ptr<Call_path> none;
        sut.follow(offers, none);
        auto const candidate = sut.candidate(0);
        ASSERT_TRUE(candidate);
        EXPECT_EQ(candidate->offer.participant, GetParam().better.participant);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Is, Server_choice,
    testing::Values(Choice{"the newer of those that were there before", offered_by(1, 2), offered_by(2, 1)},
                    Choice{"who was found last, whatever the clocks say", offered_by(1, 1, 2), offered_by(2, 9, 1)},
                    Choice{"who was found later than those before", offered_by(1, 1, 1), offered_by(2, 9, 0)},
                    Choice{"who is heard", offered_by(1, 1, 0), offered_by(2, 9, 9, true)}));

TEST_F(Server_in_reach_test, A_server_that_is_heard_is_kept_when_a_newer_one_is_found) {
    follow({offered_by(1)});
    reach();
    EXPECT_FALSE(follow({offered_by(1), offered_by(2, 2, 1)}).is_final);
    EXPECT_TRUE(sut_.is_reached());
}

TEST_F(Server_in_reach_test, A_server_that_goes_is_lost_for_good_and_the_next_has_a_path_of_its_own) {
    follow({offered_by(1), offered_by(2, 2)});
    reach();
    auto const path = sut_.path();
    auto const loss = follow({offered_by(1)});
    EXPECT_TRUE(loss.is_final);
    EXPECT_FALSE(sut_.is_reached());
    EXPECT_NE(sut_.path(), path);
    reach();
}

TEST_F(Server_in_reach_test,
       A_server_that_is_lost_from_sight_is_awaited_once_and_has_a_new_path_when_it_is_heard_again) {
    follow({offered_by(1)});
    reach();
    auto const path = sut_.path();
    EXPECT_TRUE(follow({offered_by(1, 1, 0, true)}).awaited_until);
    EXPECT_FALSE(sut_.is_reached());
    EXPECT_FALSE(sut_.is_absent());
    EXPECT_FALSE(sut_.candidate(0));
    EXPECT_FALSE(follow({offered_by(1, 1, 0, true)}).awaited_until);
    EXPECT_EQ(sut_.path(), path);
    EXPECT_FALSE(follow({offered_by(1)}).is_final);
    EXPECT_NE(sut_.path(), path);
    reach();
}

TEST_F(Server_in_reach_test, A_look_that_something_has_overtaken_tells_nothing) {
    follow({offered_by(1)});
    auto const candidate = sut_.candidate(0);
    ASSERT_TRUE(candidate);
    EXPECT_FALSE(sut_.candidate(candidate->version)) << "it has been looked at";
    follow({offered_by(1)});
    EXPECT_TRUE(sut_.candidate(candidate->version));
    sut_.connection_changed();
    sut_.set_reached(*candidate);
    EXPECT_FALSE(sut_.is_reached());
    reach();
}

TEST_F(Server_in_reach_test, Nobody_is_absent_before_the_offers_are_known) {
    EXPECT_FALSE(sut_.is_absent());
    EXPECT_FALSE(sut_.candidate(0));
    follow({});
    EXPECT_TRUE(sut_.is_absent());
}

TEST_F(Server_in_reach_test, Nothing_is_reached_once_it_is_closed) {
    follow({offered_by(1)});
    reach();
    EXPECT_TRUE(sut_.close());
    EXPECT_FALSE(sut_.is_reached());
    EXPECT_FALSE(sut_.is_open());
    follow({offered_by(1), offered_by(2)});
    EXPECT_FALSE(sut_.candidate(0));
}

}  // namespace
}  // namespace ara::com::dds
