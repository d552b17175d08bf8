#include "bench/vm/players.h"

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using nlohmann::json;
using testing::IsEmpty;
using testing::SizeIs;

json const& configuration() {
    static auto const& text =
        *new json({{"ap_statemanager",
                    {{"ApplicationSuspendRequestTimeout", 7},
                     {"ApplicationsRequestAliveConfig", {{{"EcuAliveInterfaceInstance", "4"}}}}}}});
    return text;
}

class Players_in_the_machine : public testing::Test {
 protected:
    vehicle::Timeline hear(std::string const& unit, std::string const& message, std::string const& job = "") {
        return sut.hear({1'000, unit, message, job}, [](std::int64_t time) { return time + 5; });
    }

    Players sut{configuration(), {"radio", "diag::dcm"}};
};

TEST_F(Players_in_the_machine, Are_told_what_holds_quotes_too) {
    EXPECT_THAT(Players::line_for("node", {{"do", "it's"}}, 1), testing::HasSubstr(R"('{"do":"it'\''s","id":1}')"));
}

TEST_F(Players_in_the_machine, Clients_crash_and_are_started_again) {
    sut.note("radio", {{"do", "behave"}, {"as", "crashing"}});
    EXPECT_EQ(sut.clients()[0].manner, "crashing");
    auto const events = hear("vehicle-client@radio.service", "Main process exited, code=killed, status=9/KILL");
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].text, "radio crashed");
    EXPECT_FALSE(sut.clients()[0].is_running);
    hear("vehicle-client@radio.service", "Started", "start done");
    EXPECT_TRUE(sut.clients()[0].is_running);
    EXPECT_EQ(sut.clients()[0].manner, "well");
}

TEST_F(Players_in_the_machine, Are_not_the_other_units_and_say_more_than_is_of_interest) {
    EXPECT_THAT(hear("ap_statemanager.service", R"({"event":"connected","state":"kOn","t":10})"), IsEmpty());
    EXPECT_THAT(hear("vehicle-client@radio.service", "no JSON"), IsEmpty());
    EXPECT_THAT(hear("vehicle-client@radio.service", R"({"event":"connected"})"), IsEmpty());
    EXPECT_THAT(hear("vehicle-client@stranger.service", R"({"event":"connected","state":"kOn","t":10})"), IsEmpty());
}

}  // namespace
}  // namespace bench::vm
