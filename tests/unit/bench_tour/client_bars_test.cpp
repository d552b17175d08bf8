#include "bench/tour/client_bars.h"

#include <gmock/gmock.h>

namespace bench::tour {
namespace {

using vehicle::Kind;
using vehicle::Timeline;
using Outcome = Client_bar::Outcome;

vehicle::Event of_client(std::int64_t time, vehicle::Act act) {
    return event_of(time, Kind::client, std::move(act));
}

Client_bar the_only_bar(Timeline const& events) {
    auto const bars = client_bars(events);
    EXPECT_EQ(bars.size(), 1U);
    return bars.at(0);
}

TEST(Client_bars, Last_from_the_request_to_the_answer_of_that_client) {
    auto const bar =
        the_only_bar({of_client(10, {"radio", "asked", "kPrepSD"}), of_client(20, {"tv", "answered", "kPrepSD"}),
                      of_client(30, {"radio", "answered", "kPrepSD"}), of_client(40, {"radio", "disconnected"})});
    EXPECT_EQ(bar.client, "radio");
    EXPECT_EQ(bar.state, "kPrepSD");
    EXPECT_EQ(bar.begin, 10);
    EXPECT_EQ(bar.end, 30);
    EXPECT_EQ(bar.outcome, Outcome::done);
}

TEST(Client_bars, Are_those_of_a_name_with_blanks_too) {
    auto const bar =
        the_only_bar({of_client(1, {"my radio", "asked", "kOn"}), of_client(2, {"my radio", "answered", "kOn"})});
    EXPECT_EQ(bar.client, "my radio");
    EXPECT_EQ(bar.state, "kOn");
    EXPECT_EQ(bar.outcome, Outcome::done);
}

TEST(Client_bars, Tell_a_missing_answer) {
    auto const bar = the_only_bar({of_client(1, {"radio", "asked", "kOn"}), {9, Kind::key, "p"}});
    EXPECT_EQ(bar.outcome, Outcome::missing);
    EXPECT_EQ(bar.end, 9) << "up to the end of what was seen";
    for (char const* const end : {"disconnected", "crashed"}) {
        EXPECT_EQ(the_only_bar({of_client(1, {"radio", "asked", "kOn"}), of_client(2, {"radio", end})}).outcome,
                  Outcome::missing);
    }
}

TEST(Client_bars, Count_an_answer_as_missing_that_came_too_late) {
    auto const late = [](char const* log) {
        return the_only_bar({of_client(1, {"radio", "asked", "kOn"}),
                             {2, Kind::log, log},
                             of_client(3, {"radio", "answered", "kOn"})})
            .outcome;
    };
    EXPECT_EQ(late("State notification client [ radio ] timed out"), Outcome::missing);
    EXPECT_EQ(late("State notification client [ tv ] timed out"), Outcome::done);
}

}  // namespace
}  // namespace bench::tour
