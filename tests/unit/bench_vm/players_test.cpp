#include "bench/vm/players.h"

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using vehicle::Kind;

json const& configuration() {
    static auto const& text =
        *new json({{"ap_statemanager",
                    {{"ApplicationSuspendRequestTimeout", 7},
                     {"ApplicationsRequestAliveConfig", {{{"EcuAliveInterfaceInstance", "4"}}}}}}});
    return text;
}

class Players_in_the_machine : public testing::Test {
 protected:
    vehicle::Timeline take(std::string const& unit, std::string const& message, std::string const& job = "") {
        return sut.take({1'000, unit, message, job}, [](std::int64_t time) { return time + 5; });
    }

    Players sut{configuration(), {"radio", "diag::dcm"}};
};

TEST_F(Players_in_the_machine, Are_the_configured_applications_and_the_clients) {
    EXPECT_THAT(sut.applications(), ElementsAre("4"));
    ASSERT_THAT(sut.clients(), SizeIs(2));
    EXPECT_EQ(sut.clients()[1].name, "diag::dcm");
}

TEST_F(Players_in_the_machine, Are_started_and_told_through_the_fifo_of_their_unit) {
    EXPECT_EQ(Players::line_for("node", {{"do", "offer"}}, 3),
              R"(systemctl start 'vehicle-network-manager.service' && echo '{"do":"offer","id":3}' )"
              R"(1<>'/run/vehicle/vehicle-network-manager.service')");
    EXPECT_THAT(Players::line_for("other node", {}, 1), testing::HasSubstr("/vehicle-network-neighbour.service"));
    EXPECT_THAT(Players::line_for("application 4", {}, 1), testing::HasSubstr("/vehicle-application@4.service"));
    EXPECT_THAT(Players::line_for("diag::dcm", {}, 1), testing::HasSubstr("/vehicle-client@diag::dcm.service"));
}

TEST_F(Players_in_the_machine, Are_told_what_holds_quotes_too) {
    EXPECT_THAT(Players::line_for("node", {{"do", "it's"}}, 1), testing::HasSubstr(R"('{"do":"it'\''s","id":1}')"));
}

TEST_F(Players_in_the_machine, Give_each_answer_once) {
    EXPECT_FALSE(sut.take_answer(3));
    EXPECT_THAT(take("vehicle-network-manager.service", R"({"answer":"offer","ok":true,"id":3,"t":10})"), IsEmpty());
    auto const answer = sut.take_answer(3);
    ASSERT_TRUE(answer);
    EXPECT_EQ((*answer)["ok"], true);
    EXPECT_EQ((*answer)["t"], 15) << "by the host's clock";
    EXPECT_FALSE(sut.take_answer(3));
}

TEST_F(Players_in_the_machine, Node_tells_of_the_network) {
    auto const events = take("vehicle-network-manager.service", R"({"event":"network_state","bits":"80 00","t":10})");
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].kind, Kind::network_state);
    EXPECT_EQ(events[0].time, 15);
    EXPECT_THAT(take("vehicle-network-neighbour.service", R"({"event":"network_state","bits":"80 00","t":10})"),
                IsEmpty())
        << "what another node sees is its own business";
}

TEST_F(Players_in_the_machine, Clients_owe_what_they_are_asked_for_until_they_answer) {
    auto const asked =
        take("vehicle-client@radio.service", R"({"event":"request","state":"kPrepSD","number":2,"t":10})");
    ASSERT_THAT(asked, SizeIs(1));
    EXPECT_EQ(asked[0].text, "radio asked kPrepSD");
    EXPECT_EQ(sut.clients()[0].owed, "kPrepSD");
    EXPECT_EQ(sut.clients()[0].deadline, 15 + 7'000'000'000);
    take("vehicle-client@radio.service", R"({"event":"answer","state":"kPrepSD","status":0,"number":2,"t":20})");
    EXPECT_EQ(sut.clients()[0].owed, "");
    EXPECT_EQ(sut.clients()[0].state, "kPrepSD");
    EXPECT_EQ(sut.clients()[1].state, "");
}

TEST_F(Players_in_the_machine, Clients_crash_and_are_started_again) {
    sut.note("radio", {{"do", "behave"}, {"as", "crashing"}});
    EXPECT_EQ(sut.clients()[0].manner, "crashing");
    auto const events = take("vehicle-client@radio.service", "Main process exited, code=killed, status=9/KILL");
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].text, "radio crashed");
    EXPECT_FALSE(sut.clients()[0].is_running);
    take("vehicle-client@radio.service", "Started", "start done");
    EXPECT_TRUE(sut.clients()[0].is_running);
    EXPECT_EQ(sut.clients()[0].manner, "well");
}

TEST_F(Players_in_the_machine, Begin_anew_with_the_machine) {
    take("vehicle-client@radio.service", R"({"event":"connected","state":"kOn","t":10})");
    sut.begin();
    EXPECT_FALSE(sut.clients()[0].is_connected);
}

TEST_F(Players_in_the_machine, Are_not_the_other_units_and_say_more_than_is_of_interest) {
    EXPECT_THAT(take("ap_statemanager.service", R"({"event":"connected","state":"kOn","t":10})"), IsEmpty());
    EXPECT_THAT(take("vehicle-client@radio.service", "no JSON"), IsEmpty());
    EXPECT_THAT(take("vehicle-client@radio.service", R"({"event":"connected"})"), IsEmpty());
    EXPECT_THAT(take("vehicle-client@stranger.service", R"({"event":"connected","state":"kOn","t":10})"), IsEmpty());
}

}  // namespace
}  // namespace bench::vm
