#include "service_handler_fixture.h"

namespace ximo::ap::statemanager {
namespace {

class Network_of_the_states : public Service_handler_test {};

TEST_F(Network_of_the_states, Is_requested_and_released_with_the_whole_default_pattern_also_during_standby) {
    for (auto const& pattern : {Bit_vector{}, Bit_vector{0x01, 0x02, 0x03}, Bit_vector{0x01, 0x00, 0x00, 0x00},
                                Bit_vector{0x01, 0x02, 0x03, 0x04, 0x05, 0x06}}) {
        configuration.set_nm_request_pattern(pattern);
        build_and_find();
        auto const request = "request " + bitvector2str(pattern);
        auto const release = "release " + bitvector2str(pattern);

        sut->request_network();
        sut->release_network();
        EXPECT_THAT(actions, ElementsAre(request, release));
        EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Requesting network with default NM pattern"),
                                                logged(LogLevel::kInfo, "Releasing network with default NM pattern")));
        sut->standby();
        EXPECT_EQ(actions.back(), release);
        forget();
        sut->request_network();
        sut->release_network();
        sut->end_standby();
        EXPECT_THAT(std::vector<std::string>(actions.begin(), actions.begin() + 3),
                    ElementsAre(request, release, request));
    }
}

TEST_F(Network_of_the_states, Sleeps_with_the_second_report_of_rest) {
    build_and_find();

    network->report({0, 0, 0, 0});
    EXPECT_FALSE(sut->ecu_in_sleep_mode());
    network->report({});
    EXPECT_TRUE(sut->ecu_in_sleep_mode());
    network->report({0, 0x10, 0, 0});
    EXPECT_FALSE(sut->ecu_in_sleep_mode());

    auto const notified = [](char const* text) {
        return logged(LogLevel::kInfo, "We received the notification that network was updated: ", text);
    };
    EXPECT_THAT(
        log.messages(),
        ElementsAre(notified("00 00 00 00 "), logged(LogLevel::kInfo, "Ecu state based on NM activity: ready sleep"),
                    notified(""), logged(LogLevel::kInfo, "Ecu state based on NM activity: inactive (sleep mode)"),
                    notified("00 10 00 00 "), logged(LogLevel::kInfo, "Ecu state based on NM activity: active")));
}

}  // namespace
}  // namespace ximo::ap::statemanager
