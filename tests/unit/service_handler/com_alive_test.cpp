#include "service_handler_fixture.h"

namespace ximo::ap::statemanager {
namespace {

auto user_data_set(char const* text) {
    return logged(LogLevel::kInfo, "State_manager::set_user_data(", text, ")");
}

auto const user_data_unchanged = logged(LogLevel::kInfo, "State_manager::set_user_data: no change to user data");

class Com_alive : public Service_handler_test {};

TEST_F(Com_alive, A_request_goes_to_the_network_and_into_the_user_data) {
    build_and_find();

    com_alive("radio").RequestComAlive({0x02, 0x80}, 9).get();

    EXPECT_THAT(actions, ElementsAre("request 02 80 00 00 ", "user data 80 00 01 "));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "State_manager::handle_com_alive_request(", "radio", ", ", "02 80 ",
                                   ", ", 9U, ")"),
                            logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 1U),
                            logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 3U),
                            logged(LogLevel::kInfo, "State_manager::request_network(", "02 80 00 00 ", ")"),
                            user_data_set("80 00 01 ")));
    EXPECT_TRUE(sut->apps_keep_com_alive());
    EXPECT_TRUE(sut->is_network_in_use());
    EXPECT_FALSE(sut->apps_keep_ecu_alive());
}

TEST_F(Com_alive, The_CAB_area_is_sent_when_its_bits_are_enabled) {
    config::Nm_user_data_config layout;
    layout.cab_bits_enabled = true;
    ASSERT_TRUE(configuration.set_nm_user_data_config(layout));
    build_and_find();

    com_alive("radio").RequestComAlive({0x02, 0x80, 0x03}, 0).get();

    EXPECT_THAT(actions, ElementsAre("request 02 80 03 00 ", "user data 80 00 00 02 80 03 "));
}

TEST_F(Com_alive, Only_bits_that_nobody_has_requested_yet_are_requested) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x06}, 1).get();
    forget();

    com_alive("phone").RequestComAlive({0x0C}, 1).get();

    EXPECT_THAT(actions, ElementsAre("request 08 00 00 00 "));
}

TEST_F(Com_alive, Bits_that_another_application_holds_change_the_user_data_alone) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x02}, 1).get();
    forget();

    com_alive("phone").RequestComAlive({0x02}, 2).get();

    EXPECT_THAT(actions, ElementsAre("user data 80 03 00 "));
    EXPECT_THAT(told(), Contains(logged(LogLevel::kInfo, "State_manager::request_network: no changes to CAB pattern")));
}

TEST_F(Com_alive, A_repeated_request_changes_nothing) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x02}, 1).get();
    forget();

    com_alive("radio").RequestComAlive({0x02}, 1).get();

    EXPECT_THAT(actions, IsEmpty());
    EXPECT_THAT(told(), Contains(user_data_unchanged));
}

TEST_F(Com_alive, A_release_gives_back_what_nobody_else_holds) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x06}, 1).get();
    com_alive("phone").RequestComAlive({0x04}, 2).get();
    forget();

    com_alive("radio").ReleaseComAlive({0x06}).get();

    EXPECT_THAT(actions, ElementsAre("release 02 00 00 00 ", "user data 80 02 00 "));
    EXPECT_THAT(
        log.messages(),
        ElementsAre(logged(LogLevel::kInfo, "State_manager::handle_com_alive_release(", "radio", ", ", "06 ", ")"),
                    logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 3U),
                    logged(LogLevel::kInfo, "Releasing AC bit for application ", "radio"),
                    logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 1U),
                    logged(LogLevel::kInfo, "State_manager::release_network(", "02 00 00 00 ", ")"),
                    user_data_set("80 02 00 ")));
    EXPECT_TRUE(sut->apps_keep_com_alive());

    com_alive("phone").ReleaseComAlive({0x04}).get();
    EXPECT_FALSE(sut->apps_keep_com_alive());
    EXPECT_FALSE(sut->is_network_in_use());
}

TEST_F(Com_alive, A_release_of_what_others_hold_is_no_release) {
    build_and_find();
    com_alive("phone").RequestComAlive({0x04}, 2).get();
    forget();

    com_alive("radio").ReleaseComAlive({0x04}).get();

    EXPECT_THAT(actions, IsEmpty());
    EXPECT_THAT(told(), Contains(logged(LogLevel::kInfo, "State_manager::release_network: no changes to CAB pattern")));
    EXPECT_THAT(told(), Contains(user_data_unchanged));
}

TEST_F(Com_alive, Bits_of_the_default_pattern_are_requested_but_never_released) {
    configuration.set_nm_request_pattern({0x05, 0x00, 0x00, 0x00});
    build_and_find();
    com_alive("radio").RequestComAlive({0x0F}, 0).get();
    EXPECT_THAT(actions, Contains("request 0f 00 00 00 "));

    com_alive("radio").ReleaseComAlive({0x0F}).get();

    EXPECT_THAT(actions, Contains("release 0a 00 00 00 "));
    EXPECT_THAT(told(), Contains(logged(LogLevel::kInfo, "State_manager::release_network(", "0f 00 00 00 ", ")")));
}

TEST_F(Com_alive, Bits_beyond_a_short_default_pattern_are_released) {
    configuration.set_nm_request_pattern({0x01});
    build_and_find();
    com_alive("radio").RequestComAlive({0x03, 0x03}, 0).get();

    com_alive("radio").ReleaseComAlive({0x03, 0x03}).get();

    EXPECT_THAT(actions, Contains("release 02 03 00 00 "));
}

TEST_F(Com_alive, Everything_is_released_without_a_default_pattern) {
    configuration.set_nm_request_pattern({});
    build_and_find();
    com_alive("radio").RequestComAlive({0x03}, 0).get();

    com_alive("radio").ReleaseComAlive({0x03}).get();

    EXPECT_THAT(actions, Contains("release 03 00 00 00 "));
}

TEST_F(Com_alive, What_was_released_can_be_requested_again) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x02}, 0).get();
    com_alive("radio").ReleaseComAlive({0x02}).get();
    forget();

    com_alive("radio").RequestComAlive({0x02}, 0).get();

    EXPECT_THAT(actions, ElementsAre("request 02 00 00 00 "));
}

TEST_F(Com_alive, An_empty_request_is_known_but_holds_nothing) {
    build_and_find();

    com_alive("radio").RequestComAlive({}, 3).get();

    EXPECT_THAT(actions, ElementsAre("user data 80 04 00 "));
    EXPECT_FALSE(sut->apps_keep_com_alive());
}

TEST_F(Com_alive, A_request_of_any_length_is_taken) {
    build_and_find();

    com_alive("radio").RequestComAlive(Bit_vector(60, 0xFF), 0).get();

    EXPECT_THAT(actions, ElementsAre("request ff ff ff ff "));
}

TEST_F(Com_alive, The_application_is_alive_before_the_network_is_asked) {
    build_and_find();
    bool alive_at_request = false;
    network->meanwhile = [&] { alive_at_request = sut->apps_keep_com_alive(); };

    com_alive("radio").RequestComAlive({0x02}, 0).get();

    EXPECT_TRUE(alive_at_request);
}

TEST_F(Com_alive, The_application_is_alive_no_more_before_the_network_is_told) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x02}, 0).get();
    bool alive_at_release = true;
    network->meanwhile = [&] { alive_at_release = sut->apps_keep_com_alive(); };

    com_alive("radio").ReleaseComAlive({0x02}).get();

    EXPECT_FALSE(alive_at_release);
}

class Car_wake_up : public Service_handler_test {};

TEST_F(Car_wake_up, A_request_goes_into_the_user_data_alone) {
    build_and_find();

    cwu("alarm").RequestCarWakeUp(2).get();

    EXPECT_THAT(actions, ElementsAre("user data c0 02 00 "));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "State_manager::handle_cwu_request(", "alarm", ", ", 2U, ")"),
                            logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 1U),
                            logged(LogLevel::kInfo, "CWU bit set by appId: ", "alarm"), user_data_set("c0 02 00 ")));
    EXPECT_TRUE(sut->apps_keep_com_alive());
}

TEST_F(Car_wake_up, A_release_takes_it_back) {
    build_and_find();
    cwu("alarm").RequestCarWakeUp(2).get();
    forget();

    cwu("alarm").ReleaseCarWakeUp().get();

    EXPECT_THAT(actions, ElementsAre("user data 80 00 00 "));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "State_manager::handle_cwu_release(", "alarm", ")"),
                            logged(LogLevel::kInfo, "CWU bit cleared by appId: ", "alarm"),
                            logged(LogLevel::kInfo, "Releasing AC bit for application ", "alarm"),
                            logged(LogLevel::kInfo, "Applying user data bits size: ", 4U, " at offset ", 1U),
                            user_data_set("80 00 00 ")));
    EXPECT_FALSE(sut->apps_keep_com_alive());
}

TEST_F(Car_wake_up, The_application_is_alive_or_not_before_the_network_is_told) {
    build_and_find();
    std::vector<bool> alive;
    network->meanwhile = [&] { alive.push_back(sut->apps_keep_com_alive()); };

    cwu("alarm").RequestCarWakeUp(2).get();
    cwu("alarm").ReleaseCarWakeUp().get();

    EXPECT_THAT(alive, ElementsAre(true, false));
}

TEST_F(Car_wake_up, Both_services_of_one_name_belong_to_one_application) {
    build_and_find();
    com_alive("radio").RequestComAlive({0x02}, 4).get();
    cwu("radio").RequestCarWakeUp(5).get();
    forget();

    cwu("radio").ReleaseCarWakeUp().get();

    EXPECT_THAT(actions, ElementsAre("user data 80 10 00 "));
    EXPECT_TRUE(sut->apps_keep_com_alive());
}

}  // namespace
}  // namespace ximo::ap::statemanager
