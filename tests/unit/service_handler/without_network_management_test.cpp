#include "service_handler_fixture.h"
#include "watching_cwu.h"

#include <optional>

namespace ximo::ap::statemanager {
namespace {

class Without_network_management : public Service_handler_test {
 protected:
    Without_network_management() { configuration.set_nm_usage(false); }
};

TEST_F(Without_network_management, Offers_the_restart_service_alone) {
    build();

    EXPECT_TRUE(sut->init());

    EXPECT_THAT(binding.recorded("offer"), ElementsAre("offer " + k_dsa + " DSA_Interface"));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "NM usage is disabled"),
                                            logged(LogLevel::kInfo, "Offering DSA service")));
}

TEST_F(Without_network_management, Neither_offers_nor_withdraws_the_services_of_applications) {
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

TEST_F(Without_network_management, Never_calls_network_management) {
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

TEST_F(Without_network_management, Answers_every_query_with_no) {
    build().init();

    EXPECT_FALSE(sut->nm_interface_available());
    EXPECT_FALSE(sut->apps_keep_com_alive());
    EXPECT_FALSE(sut->apps_keep_ecu_alive());
    EXPECT_FALSE(sut->is_network_in_use());
    EXPECT_FALSE(sut->ecu_in_sleep_mode());
}

TEST_F(Without_network_management, Takes_calls_of_services_that_were_never_offered) {
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

TEST_F(Without_network_management, Does_nothing_but_log_at_a_suspend) {
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
