// From construction to the moment at which all services are offered.

#include "service_handler_fixture.h"
#include "tarq/com/exception.h"

#include <exception>
#include <optional>
#include <stdexcept>
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
    EXPECT_THAT(actions, ElementsAre("search"));
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

/// Notes whether network management is available when the service is offered, and counts withdrawals.
class Watching_cwu : public State_manager_cwu_interface {
 public:
    explicit Watching_cwu(std::string const& instance) : State_manager_cwu_interface(instance) {}
    void offer() override { available_at_offer = handler->nm_interface_available(); }
    void stop_offer() override { ++withdrawals; }

    Service_handler_interface const* handler{nullptr};
    std::optional<bool> available_at_offer;
    int withdrawals{0};
};

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

TEST_F(Starting, Sends_the_CAB_area_only_when_its_bits_are_enabled) {
    config::Nm_user_data_config layout;
    layout.cab_bits_enabled = true;
    ASSERT_TRUE(configuration.set_nm_user_data_config(layout));
    build().init();

    network->be_found();

    EXPECT_THAT(actions, Contains("user data 80 00 00 00 00 00 "));
}

TEST_F(Starting, Sends_no_user_data_when_the_CAB_area_is_all_there_is) {
    config::Nm_user_data_config layout;
    layout.ac_offset = 0;
    layout.ac_bytes = 0;
    layout.cab_offset = 0;
    layout.user_data_bytes = 3;
    ASSERT_TRUE(configuration.set_nm_user_data_config(layout));
    build().init();
    forget();

    network->be_found();

    EXPECT_THAT(actions, ElementsAre("release ff ff ff 01 "));
    EXPECT_THAT(log.messages(),
                Contains(logged(LogLevel::kInfo, "State_manager::set_user_data: no change to user data")));
}

TEST_F(Starting, Takes_a_layout_whose_sums_wrap_around) {
    config::Nm_user_data_config layout;
    layout.ac_offset = 0;
    layout.cab_offset = 2;
    layout.cab_bytes = 0xFFFFFFFF;
    ASSERT_TRUE(configuration.set_nm_user_data_config(layout));
    build().init();

    network->be_found();
    com_alive("radio").RequestComAlive({0x01}, 1).get();

    EXPECT_THAT(actions, Contains("user data 80 00 00 00 00 00 "));
    EXPECT_THAT(actions, Contains("request 01 00 00 00 "));
}

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

TEST_F(Starting, Passes_a_refused_instance_on_to_the_creator) {
    configuration.set_max_apps_ecualive(3);
    configuration.add_apps_ecualive("any*");

    EXPECT_THROW(build(), tarq::com::Invalid_argument_exception);
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

TEST_F(Starting, Goes_on_without_an_offer_that_fails) {
    binding.fail_offers(k_com_alive,
                        std::make_exception_ptr(tarq::com::Infrastructure_exception("no memory for topics")));
    build().init();
    forget();

    network->be_found();

    EXPECT_THAT(log.messages(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "infrastructure exception ", "no memory for topics"),
                            logged(LogLevel::kError, "infrastructure exception ", "no memory for topics")));
    EXPECT_TRUE(binding.is_offered(k_cwu, "alarm"));
    EXPECT_TRUE(sut->nm_interface_available());
}

TEST_F(Starting, Says_when_the_restart_service_can_not_be_offered) {
    binding.fail_offers(k_dsa, std::make_exception_ptr(tarq::com::Infrastructure_exception("no engine")));
    build();

    EXPECT_FALSE(sut->init());

    EXPECT_THAT(log.messages(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "infrastructure exception ", "no engine")));
    EXPECT_THAT(actions, ElementsAre("search"));
}

TEST_F(Starting, Says_when_network_management_can_not_be_looked_for) {
    build();
    network->at_the_search = [] { throw tarq::com::Infrastructure_exception("no engine"); };

    EXPECT_FALSE(sut->init());

    EXPECT_THAT(log.messages(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "infrastructure exception ", "no engine")));
    EXPECT_TRUE(binding.is_offered(k_dsa, "DSA_Interface"));
    EXPECT_FALSE(sut->nm_interface_available());
}

class Starting_without_network_management : public Service_handler_test {
 protected:
    Starting_without_network_management() { configuration.set_nm_usage(false); }
};

TEST_F(Starting_without_network_management, Offers_the_restart_service_alone) {
    build();

    EXPECT_TRUE(sut->init());

    EXPECT_THAT(binding.recorded("offer"), ElementsAre("offer " + k_dsa + " DSA_Interface"));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "NM usage is disabled"),
                                            logged(LogLevel::kInfo, "Offering DSA service")));
}

TEST_F(Starting_without_network_management, Neither_offers_nor_withdraws_the_services_of_applications) {
    auto service = std::make_unique<Watching_cwu>("alarm");
    auto& alarm = *service;
    Service_handler::Cwu_services cwu;
    cwu.push_back(std::move(service));
    Service_handler handler(configuration, nullptr, {}, std::move(cwu));
    alarm.handler = &handler;

    handler.init();
    handler.deinit();

    EXPECT_EQ(alarm.available_at_offer, std::nullopt);
    EXPECT_EQ(alarm.withdrawals, 0);
}

TEST_F(Starting_without_network_management, Never_calls_network_management) {
    build().init();

    sut->request_network();
    sut->release_network();
    sut->standby();
    sut->ecu_alive_request("door");
    sut->ecu_alive_release("door");
    sut->end_standby();
    sut->ecu_alive_request("door");
    sut->ecu_alive_release("door");
    sut->deinit();

    EXPECT_THAT(actions, IsEmpty());
}

TEST_F(Starting_without_network_management, Answers_every_query_with_no) {
    build().init();

    EXPECT_FALSE(sut->nm_interface_available());
    EXPECT_FALSE(sut->apps_keep_com_alive());
    EXPECT_FALSE(sut->apps_keep_ecu_alive());
    EXPECT_FALSE(sut->is_network_in_use());
    EXPECT_FALSE(sut->ecu_in_sleep_mode());
}

TEST_F(Starting_without_network_management, Takes_calls_of_services_that_were_never_offered) {
    auto service = std::make_unique<State_manager_com_alive_interface>("radio");
    auto& radio = *service;
    auto wake_up = std::make_unique<State_manager_cwu_interface>("alarm");
    auto& alarm = *wake_up;
    Service_handler::Com_alive_services com_alive;
    com_alive.push_back(std::move(service));
    Service_handler::Cwu_services cwu;
    cwu.push_back(std::move(wake_up));
    Service_handler handler(configuration, nullptr, std::move(com_alive), std::move(cwu));
    handler.init();

    radio.RequestComAlive({0x01}, 1);
    radio.ReleaseComAlive({0x01});
    alarm.RequestCarWakeUp(1);

    EXPECT_FALSE(handler.apps_keep_com_alive());
    alarm.ReleaseCarWakeUp();
}

class Lengths_for_network_management : public Service_handler_test {
 protected:
    /// Why a service handler can't be built with these lengths; empty when it can.
    std::string refusal(std::uint32_t user_data_bytes, std::size_t pattern_bytes) {
        config::Nm_user_data_config layout;
        layout.user_data_bytes = user_data_bytes;
        configuration.set_nm_user_data_config(layout);
        configuration.set_nm_request_pattern(Bit_vector(pattern_bytes, 0x01));
        try {
            build().init();
        } catch (std::length_error const& error) {
            return error.what();
        }
        return {};
    }
};

TEST_F(Lengths_for_network_management, Are_those_that_a_call_carries) {
    EXPECT_EQ(refusal(1024, 1024), "");
    EXPECT_EQ(refusal(1025, 0), "UserDataBytes says 1025 bytes, and network management takes 1024 at most");
    EXPECT_EQ(refusal(0xFFFFFFFF, 0), "UserDataBytes says 4294967295 bytes, and network management takes 1024 at most");
    EXPECT_EQ(refusal(6, 1025), "DefautNMRequestPattern says 1025 bytes, and network management takes 1024 at most");
}

TEST_F(Lengths_for_network_management, Are_not_looked_at_where_it_is_not_used) {
    configuration.set_nm_usage(false);

    EXPECT_EQ(refusal(0xFFFFFFFF, 1025), "");
}

}  // namespace
}  // namespace ximo::ap::statemanager
