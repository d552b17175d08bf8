// A stranger who offers far more than anybody has: what is known of it is bounded, and calls go on beside it.

#include "client_fixture.h"
#include "peer_services.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iostream>
#include <vector>

#include <malloc.h>

namespace com_test {
namespace {

using std::chrono::duration;
using std::chrono::steady_clock;

std::string const k_our_interface = "tarq::udpnm::interface::NetworkStateInterface";

// In which the engine receives, and which come and go.
constexpr std::size_t k_engine_buffers = 2 * 1024 * 1024;

class Flood : public Client {
 protected:
    static std::vector<std::string> environment() {
        auto assignments = given_up_soon();
        // It is not told what ThreadSanitizer can't see in the engine.
        assignments.push_back("TSAN_OPTIONS=report_bugs=0");
        return assignments;
    }

    // Ready when all is written.
    static bench::Player stranger(int participants, int offers, std::string const& interface_name) {
        return bench::Player({FLOOD_PROGRAM, std::to_string(participants), std::to_string(offers), interface_name},
                             environment());
    }

    // Sorted, of at least 2000 calls, and of all until something is over.
    template <class Condition>
    static std::vector<double> times_of_calls(User_data_proxy& proxy, Condition const& is_over) {
        std::vector<double> times;
        while (!is_over() || times.size() < 2000) {
            auto const begin = steady_clock::now();
            if (!succeeds(proxy.SetUserData({1}))) {
                ADD_FAILURE() << "after " << times.size() << " calls";
                return {0};
            }
            times.push_back(duration<double, std::milli>(steady_clock::now() - begin).count());
        }
        std::sort(times.begin(), times.end());
        return times;
    }

    bench::Player peer_{server({"app"})};
};

TEST_F(Flood, Of_one_participant_leaves_sixty_four_of_its_offers_and_room_for_others) {
    Watching<Network_proxy> lookup("*");
    lookup.expect({"app"});
    auto const flood = stranger(1, 2000, k_our_interface);
    lookup.reports.await([](auto const& reports) { return reports.back().size() >= 64 + 1; });
    auto const witness = server({"witness"});
    auto const has_witness = [](auto const& reports) {
        return std::count(reports.back().begin(), reports.back().end(), "witness") != 0;
    };
    auto const known = lookup.reports.await(has_witness).back();
    EXPECT_EQ(known.size(), 64U + 2U);
    EXPECT_EQ(std::count(known.begin(), known.end(), "app"), 1);
}

TEST_F(Flood, Of_many_participants_leaves_one_thousand_and_twenty_four_offers) {
    User_data own("own");
    own.OfferService();
    Network_proxy proxy(found<Network_proxy>("app"));
    Watching<Network_proxy> lookup("*");
    auto const flood = stranger(20, 100, k_our_interface);
    // The peer has two more services, which count in all, and own ones find room in any case.
    auto const known = lookup.reports.await([](auto const& reports) { return reports.back().size() >= 1024 - 2; });
    EXPECT_EQ(known.back().size(), 1024U - 2U);
    EXPECT_TRUE(succeeds(proxy.RequestNetwork({1})));
    Network own_network("own", [](auto const&) {});
    own_network.OfferService();
    EXPECT_TRUE(succeeds(Network_proxy(found<Network_proxy>("own")).RequestNetwork({1})));
    EXPECT_EQ(lookup.reports.await([](auto const& reports) { return reports.back().size() >= 1024 - 1; }).back().size(),
              1024U - 1U);
}

TEST_F(Flood, That_goes_makes_room_again) {
    Watching<Network_proxy> lookup("*");
    lookup.expect({"app"});
    {
        auto flood = stranger(1, 100, k_our_interface);
        lookup.reports.await([](auto const& reports) { return reports.back().size() == 65; });
        flood.process().close_input();
        EXPECT_EQ(flood.process().wait(k_patience), 0);
    }
    lookup.expect({"app"});
    auto const flood = stranger(1, 100, k_our_interface);
    EXPECT_EQ(lookup.reports.await([](auto const& reports) { return reports.back().size() == 65; }).back().size(), 65U);
}

TEST_F(Flood, Of_twenty_thousand_offers_takes_no_memory_and_no_call) {
    User_data_proxy proxy(found<User_data_proxy>("app"));
    auto const usual = times_of_calls(proxy, [] { return true; });
    auto const before = ::mallinfo2().uordblks;
    bench::Child_process const flood({FLOOD_PROGRAM, "1", "20000", "an::interface::Of_a_stranger"}, environment());
    bench::Message_log ready(flood.output());
    auto const times = times_of_calls(proxy, [&ready] { return !ready.messages().empty(); });
    auto const after = ::mallinfo2().uordblks;
    auto const more = after > before ? after - before : 0;
    auto const most = [](auto const& sorted) { return sorted[sorted.size() * 99 / 100]; };
    std::cout << times.size() << " calls, of a hundred 99 took less than " << most(times) << " ms, before that "
              << most(usual) << " ms, and the longest " << times.back() << " ms; " << more / 1024
              << " KiB more in use\n";
    EXPECT_LT(most(times), 10 * most(usual) + 100) << "on a busy machine both take longer";
    EXPECT_LT(more, k_engine_buffers + 2 * 1024 * 1024);
}

}  // namespace
}  // namespace com_test
