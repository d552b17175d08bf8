#include "aggregator_fixture.h"

namespace ximo::ap::statemanager::nm {
namespace {

auto cwu_set_by(char const* key) {
    return logged(LogLevel::kInfo, "CWU bit set by appId: ", key);
}

auto cwu_cleared_by(char const* key) {
    return logged(LogLevel::kInfo, "CWU bit cleared by appId: ", key);
}

class Car_wake_up : public Aggregator {};

TEST_F(Car_wake_up, Sets_its_bit_in_the_user_data) {
    sut.request_cwu("app");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0xC0, 0, 0, 0, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(cwu_set_by("app")));
    EXPECT_TRUE(sut.is_com_alive());
}

TEST_F(Car_wake_up, Is_over_when_the_last_application_releases_it) {
    sut.request_cwu("one");
    sut.request_cwu("two");
    log.clear();

    sut.release_cwu("one");
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0xC0, 0, 0, 0, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(releasing_ac_bit("one"), applying(4, 1)));
    EXPECT_TRUE(sut.is_com_alive());

    log.clear();
    sut.release_cwu("two");
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(cwu_cleared_by("two"), releasing_ac_bit("two"), applying(4, 1)));
    EXPECT_FALSE(sut.is_com_alive());
}

TEST_F(Car_wake_up, Is_a_flag_of_the_application_and_not_a_count) {
    sut.request_cwu("app");
    sut.request_cwu("app");

    sut.release_cwu("app");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
}

TEST_F(Car_wake_up, Gives_the_AC_bit_back_when_its_application_holds_nothing_else) {
    sut.set_ac_bit("app", 2);
    sut.request_cwu("app");

    sut.release_cwu("app");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
}

TEST_F(Car_wake_up, Gives_the_AC_bit_back_while_another_application_keeps_the_wake_up) {
    sut.set_ac_bit("one", 2);
    sut.request_cwu("one");
    sut.request_cwu("two");

    sut.release_cwu("one");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0xC0, 0, 0, 0, 0, 0));
}

TEST_F(Car_wake_up, Leaves_the_AC_bit_to_an_application_that_still_holds_a_CAB_bit) {
    sut.set_ac_bit("app", 2);
    sut.request_cab_bits("app", {0x01});
    sut.request_cwu("app");
    log.clear();

    sut.release_cwu("app");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0x02, 0, 0x01, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(cwu_cleared_by("app")));
}

TEST_F(Car_wake_up, Is_cleared_also_for_an_application_that_never_requested_it) {
    sut.release_cwu("app");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(cwu_cleared_by("app"), releasing_ac_bit("app"), applying(4, 1)));
}

}  // namespace
}  // namespace ximo::ap::statemanager::nm
