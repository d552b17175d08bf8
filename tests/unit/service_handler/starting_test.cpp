// From construction to the moment at which all services are offered.

#include "service_handler_fixture.h"
#include "watching_cwu.h"

#include <ostream>
#include <string_view>
#include <type_traits>

namespace ximo::ap::statemanager {
namespace {

// Services and network management know it by its address.
static_assert(!std::is_move_constructible_v<Service_handler>);

class Starting : public Service_handler_test {};

TEST_F(Starting, Offers_nothing_and_knows_nothing_before_init) {
    build();

    EXPECT_THAT(binding.recorded("offer"), IsEmpty());
    EXPECT_THAT(actions, IsEmpty());
    EXPECT_THAT(log.messages(), IsEmpty());
    EXPECT_FALSE(sut->nm_interface_available());
    EXPECT_FALSE(sut->apps_keep_com_alive());
    EXPECT_FALSE(sut->apps_keep_ecu_alive());
    EXPECT_FALSE(sut->is_network_in_use());
    EXPECT_FALSE(sut->ecu_in_sleep_mode());
}

TEST_F(Starting, Offers_the_restart_service_and_looks_for_network_management) {
    build();

    EXPECT_TRUE(sut->init());

    EXPECT_THAT(binding.recorded("offer"), ElementsAre("offer " + k_dsa + " DSA_Interface"));
    EXPECT_THAT(actions, ElementsAre("callback", "search"));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "NM usage is enabled"),
                            logged(LogLevel::kInfo, "The following NM request pattern is used: ", "01 00 00 00 "),
                            logged(LogLevel::kInfo, "Offering DSA service"),
                            logged(LogLevel::kInfo, "Looking up UdpNM services...")));
    EXPECT_FALSE(sut->nm_interface_available());
}

TEST_F(Starting, Sends_the_initial_user_data_then_offers_the_services_when_network_management_is_found) {
    build().init();
    forget();
    network->meanwhile = [this] { EXPECT_THAT(binding.record(), IsEmpty()) << "while the network is asked"; };

    network->be_found();

    EXPECT_THAT(actions, ElementsAre("user data 80 00 00 ", "release ff ff ff 01 "));
    EXPECT_THAT(binding.record(), ElementsAre("offer " + k_alive + " door", "offer " + k_alive + " roof",
                                              "offer " + k_com_alive + " radio", "offer " + k_com_alive + " phone",
                                              "offer " + k_cwu + " radio", "offer " + k_cwu + " alarm"));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Initializing user data"),
                                            logged(LogLevel::kInfo, "State_manager::set_user_data(", "80 00 00 ", ")"),
                                            logged(LogLevel::kInfo, "Offering ECU alive services"),
                                            logged(LogLevel::kInfo, "Offering COM alive services"),
                                            logged(LogLevel::kInfo, "Offering CWU services")));
    EXPECT_TRUE(sut->nm_interface_available());
}

TEST_F(Starting, Is_available_only_when_everything_is_offered) {
    auto service = std::make_unique<Watching_cwu>("alarm");
    auto& alarm = *service;
    Service_handler::Cwu_services cwu;
    cwu.push_back(std::move(service));
    auto client = std::make_unique<test_support::Fake_network_management>(actions);
    network = client.get();
    Service_handler handler(configuration, std::move(client), {}, std::move(cwu));
    alarm.handler = &handler;
    handler.init();

    network->be_found();

    EXPECT_EQ(alarm.available_at_offer, false);
    EXPECT_TRUE(handler.nm_interface_available());
}

struct Area {
    std::uint32_t offset;
    std::uint32_t bytes;
};

/// What is sent of user data with these areas, the CAB bits enabled or not.
struct Sent {
    char const* name;
    std::uint32_t user_data_bytes;
    Area ac;
    Area cab;
    bool cab_enabled;
    char const* bytes;

    friend std::ostream& operator<<(std::ostream& out, Sent const& sent) { return out << sent.name; }
};

class User_data_at_the_start : public Service_handler_test, public testing::WithParamInterface<Sent> {};

TEST_P(User_data_at_the_start, Has_the_configured_length_less_that_of_a_CAB_area_that_is_not_enabled) {
    auto const& sent = GetParam();
    config::Nm_user_data_config layout;
    layout.user_data_bytes = sent.user_data_bytes;
    layout.ac_offset = sent.ac.offset;
    layout.ac_bytes = sent.ac.bytes;
    layout.cab_offset = sent.cab.offset;
    layout.cab_bytes = sent.cab.bytes;
    layout.cab_bits_enabled = sent.cab_enabled;
    ASSERT_TRUE(configuration.set_nm_user_data_config(layout));
    build().init();
    forget();

    network->be_found();

    if (std::string_view(sent.bytes).empty()) {
        EXPECT_THAT(actions, ElementsAre("release ff ff ff 01 "));
        EXPECT_THAT(log.messages(),
                    Contains(logged(LogLevel::kInfo, "State_manager::set_user_data: no change to user data")));
    } else {
        EXPECT_THAT(actions, ElementsAre(std::string("user data ") + sent.bytes, "release ff ff ff 01 "));
    }
}

INSTANTIATE_TEST_SUITE_P(Layouts, User_data_at_the_start,
                         testing::Values(Sent{"usual", 6, {1, 2}, {3, 3}, false, "80 00 00 "},
                                         Sent{"enabled", 6, {1, 2}, {3, 3}, true, "80 00 00 00 00 00 "},
                                         Sent{"in_the_middle", 8, {1, 2}, {3, 3}, false, "80 00 00 00 00 "},
                                         Sent{"a_byte_behind_CAB", 8, {1, 2}, {3, 4}, false, "80 00 00 00 "},
                                         Sent{"a_byte_between", 8, {1, 2}, {4, 4}, false, "80 00 00 00 "},
                                         Sent{"CAB_alone", 3, {0, 0}, {0, 3}, false, ""}),
                         [](auto const& test) { return std::string(test.param.name); });

TEST_F(Starting, Offers_groups_without_instances_as_nothing) {
    config::State_manager_config const nobody;
    build(nobody).init();
    network->be_found();

    EXPECT_THAT(binding.recorded("offer"), ElementsAre("offer " + k_dsa + " DSA_Interface"));
    EXPECT_THAT(told(), Contains(logged(LogLevel::kInfo, "Offering CWU services")));
    EXPECT_TRUE(sut->nm_interface_available());
}

TEST_F(Starting, Registers_the_callbacks_before_network_management_is_found) {
    build().init();
    network->be_found();

    EXPECT_NO_THROW(com_alive("phone").RequestComAlive({}, 0).get());
    EXPECT_NO_THROW(com_alive("phone").ReleaseComAlive({}).get());
    EXPECT_NO_THROW(cwu("alarm").RequestCarWakeUp(0).get());
    EXPECT_NO_THROW(cwu("alarm").ReleaseCarWakeUp().get());
}

TEST_F(Starting, Leaves_out_services_that_are_not_there) {
    Service_handler::Com_alive_services com_alive;
    com_alive.push_back(nullptr);
    Service_handler::Cwu_services cwu;
    cwu.push_back(nullptr);
    Service_handler without(configuration, nullptr, std::move(com_alive), std::move(cwu));

    EXPECT_TRUE(without.init());
    without.request_network();
    without.standby();
    without.end_standby();
    without.release_network();
    without.deinit();

    EXPECT_FALSE(without.nm_interface_available());
}

TEST_F(Starting, Keeps_the_initial_user_data_back_when_network_management_is_found_during_a_suspend) {
    build().init();
    sut->standby();
    forget();

    network->be_found();

    EXPECT_THAT(actions, IsEmpty());
    EXPECT_TRUE(sut->nm_interface_available());
}

}  // namespace
}  // namespace ximo::ap::statemanager
