#include "service_handler_fixture.h"

namespace ximo::ap::statemanager {
namespace {

class Standby : public Service_handler_test {};

TEST_F(Standby, Takes_everything_back_from_the_network) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x02}, 1).get();
    forget();

    sut->standby();

    EXPECT_THAT(actions, ElementsAre("release 00 00 01 00 ", "user data 00 00 00 ", "release 02 00 00 00 ",
                                     "release 01 00 00 00 "));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "Stop sending NM messages"),
                            logged(LogLevel::kDebug, "State_manager::ecu_alive_release: ", "Standby call"),
                            logged(LogLevel::kInfo, "State_manager::ecu_alive_release network")));
}

TEST_F(Standby, Leaves_the_ECU_alive_pattern_to_an_application_that_holds_it) {
    build_and_find();
    ecu_alive("door").RequestAlive().get();
    forget();

    sut->standby();

    EXPECT_THAT(actions, ElementsAre("user data 00 00 00 ", "release 00 00 00 00 ", "release 01 00 00 00 "));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "Stop sending NM messages"),
                            logged(LogLevel::kDebug, "State_manager::ecu_alive_release: ", "Standby call")));
}

TEST_F(Standby, Remembers_what_applications_ask_for_and_sends_nothing) {
    build_and_find();
    sut->standby();
    forget();

    com_alive("radio").RequestComAlive({0x06}, 1).get();
    com_alive("radio").ReleaseComAlive({0x04}).get();
    cwu("alarm").RequestCarWakeUp(2).get();
    ecu_alive("door").RequestAlive().get();
    ecu_alive("roof").RequestAlive().get();
    ecu_alive("roof").ReleaseAlive().get();

    EXPECT_THAT(actions, IsEmpty());
    EXPECT_THAT(told(), Contains(logged(LogLevel::kInfo, "State_manager::request_network(", "06 00 00 00 ", ")")));
    EXPECT_THAT(told(), Contains(logged(LogLevel::kInfo, "State_manager::release_network(", "04 00 00 00 ", ")")));
    EXPECT_THAT(told(), Contains(logged(LogLevel::kInfo, "State_manager::set_user_data(", "c0 03 00 ", ")")));
    EXPECT_TRUE(sut->is_network_in_use());

    sut->end_standby();
    EXPECT_THAT(actions, ElementsAre("request 01 00 00 00 ", "request 02 00 00 00 ", "request 00 00 01 00 ",
                                     "user data c0 03 00 02 00 00 "));
}

TEST_F(Standby, Does_not_give_the_ECU_alive_pattern_back_a_second_time) {
    build_and_find();
    sut->standby();
    forget();

    ecu_alive("door").ReleaseAlive().get();

    EXPECT_THAT(actions, IsEmpty());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "State_manager::ecu_alive_release: ", "door")));
}

TEST_F(Standby, Ends_with_everything_requested_again_and_the_user_data_whole) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x02, 0x00, 0x05}, 1).get();
    sut->standby();
    forget();

    sut->end_standby();

    EXPECT_THAT(actions, ElementsAre("request 01 00 00 00 ", "request 02 00 05 00 ", "user data 80 01 00 02 00 05 "));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Start sending NM messages")));
}

TEST_F(Standby, Ends_with_the_ECU_alive_pattern_for_applications_that_hold_it) {
    build_and_find();
    ecu_alive("door").RequestAlive().get();
    sut->standby();
    forget();

    sut->end_standby();

    EXPECT_THAT(actions, ElementsAre("request 01 00 00 00 ", "request 00 00 00 00 ", "request 00 00 01 00 ",
                                     "user data 80 00 00 00 00 00 "));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "Start sending NM messages"),
                            logged(LogLevel::kInfo, "State_manager::ecu_alive_request: ", "End standby call")));
}

TEST_F(Standby, Is_over_for_applications_when_it_ends) {
    build_and_find();
    sut->standby();
    sut->end_standby();
    forget();

    com_alive("radio").RequestComAlive({0x02}, 1).get();
    com_alive("radio").ReleaseComAlive({0x02}).get();

    EXPECT_THAT(actions, ElementsAre("request 02 00 00 00 ", "user data 80 01 00 ", "release 02 00 00 00 ",
                                     "user data 80 00 00 "));
}

TEST_F(Standby, Keeps_the_initial_user_data_back_when_network_management_is_found_meanwhile) {
    build().init();
    sut->standby();
    forget();

    network->be_found();

    EXPECT_THAT(actions, IsEmpty());
    EXPECT_TRUE(sut->nm_interface_available());
}

TEST_F(Standby, Does_nothing_but_log_without_network_management) {
    configuration.set_nm_usage(false);
    build().init();
    forget();

    sut->standby();
    sut->end_standby();

    EXPECT_THAT(actions, IsEmpty());
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "UdpNm usage disabled, no preparing actions performed"),
                            logged(LogLevel::kInfo, "UdpNm usage disabled, no resuming actions performed")));
}

}  // namespace
}  // namespace ximo::ap::statemanager
