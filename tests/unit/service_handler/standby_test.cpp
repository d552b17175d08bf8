#include "service_handler_fixture.h"

#include <algorithm>
#include <ostream>
#include <random>

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

/// What becomes of an ECU-alive pattern that the network holds when a suspend begins.
struct Owed_release {
    std::string name;
    Bit_vector default_pattern;
    Bit_vector cab_bits;                 ///< held by an application throughout
    bool requested_before;               ///< by "door"
    std::vector<std::string> meanwhile;  ///< calls during the suspend, "+door" for a request, "-door" for a release
    std::vector<std::string> after;      ///< what follows after all that is requested anew
};

void PrintTo(Owed_release const& history, std::ostream* out) {
    *out << history.name;
}

class Release_that_is_owed : public Service_handler_test, public testing::WithParamInterface<Owed_release> {
 protected:
    static void call(std::string const& what) {
        auto application = ecu_alive(what.substr(1));
        (what.front() == '+' ? application.RequestAlive() : application.ReleaseAlive()).get();
    }
};

TEST_P(Release_that_is_owed, Follows_when_all_is_requested_again) {
    auto const& param = GetParam();
    configuration.set_nm_request_pattern(param.default_pattern);
    build_and_find();
    com_alive("radio").RequestComAlive(param.cab_bits, 1).get();
    if (param.requested_before) {
        call("+door");
    }
    sut->standby();
    for (auto const& what : param.meanwhile) {
        call(what);
    }
    forget();

    sut->end_standby();

    ASSERT_FALSE(actions.empty());
    auto const user_data = std::find_if(actions.begin(), actions.end(),
                                        [](auto const& action) { return action.rfind("user data", 0) == 0; });
    ASSERT_NE(user_data, actions.end());
    EXPECT_EQ(std::vector<std::string>(user_data + 1, actions.end()), param.after);
    auto const sent = logged(LogLevel::kInfo, "State_manager::ecu_alive_release network");
    EXPECT_EQ(testing::Value(told(), Contains(sent)), !param.after.empty());
    forget();
    sut->end_standby();
    EXPECT_EQ(testing::Value(actions, Contains("release 00 00 01 00 ")), false) << "a second time";
}

Bit_vector const k_first_bit{0x01, 0x00, 0x00, 0x00};
Bit_vector const k_ecu_alive_bit{0x00, 0x00, 0x01, 0x00};
std::string const k_released = "release 00 00 01 00 ";

INSTANTIATE_TEST_SUITE_P(
    Standby, Release_that_is_owed,
    testing::Values(Owed_release{"released_once", k_first_bit, {}, true, {"-door"}, {k_released}},
                    Owed_release{"released_twice", k_first_bit, {}, true, {"-door", "-door"}, {k_released}},
                    Owed_release{
                        "passed_on_and_released", k_first_bit, {}, true, {"+roof", "-door", "-roof"}, {k_released}},
                    Owed_release{"without_default_pattern", {}, {}, true, {"-door"}, {k_released}},
                    Owed_release{"beside_other_CAB_bits", k_first_bit, {0x02}, true, {"-door"}, {k_released}},
                    Owed_release{"inside_the_default_pattern", k_ecu_alive_bit, {}, true, {"-door"}, {}},
                    Owed_release{"inside_the_CAB_pattern", k_first_bit, k_ecu_alive_bit, true, {"-door"}, {}},
                    Owed_release{"never_released", k_first_bit, {}, true, {}, {}},
                    Owed_release{"released_and_requested_again", k_first_bit, {}, true, {"-door", "+door"}, {}},
                    Owed_release{"passed_on", k_first_bit, {}, true, {"+roof", "-door"}, {}},
                    Owed_release{"requested_and_released_meanwhile", k_first_bit, {}, false, {"+door", "-door"}, {}},
                    Owed_release{"released_without_a_request", k_first_bit, {}, false, {"-door"}, {}}),
    [](auto const& entry) { return entry.param.name; });

TEST_F(Standby, Leaves_with_the_network_what_applications_hold_whatever_they_did_before) {
    build_and_find();
    std::mt19937 random(1);
    bool held_by_the_network = false;
    bool suspended = false;
    for (int step = 0; step < 2000; ++step) {
        auto application = ecu_alive(random() % 2 == 0 ? "door" : "roof");
        forget();
        switch (random() % 5) {
            case 0:
                suspended ? sut->end_standby() : sut->standby();
                suspended = !suspended;
                break;
            case 1:
            case 2:
                application.RequestAlive().get();
                break;
            default:
                application.ReleaseAlive().get();
        }
        for (auto const& action : actions) {
            held_by_the_network =
                action == "request 00 00 01 00 " || (held_by_the_network && action != "release 00 00 01 00 ");
        }
        if (!suspended) {
            ASSERT_EQ(held_by_the_network, sut->apps_keep_ecu_alive()) << "step " << step;
        }
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager
