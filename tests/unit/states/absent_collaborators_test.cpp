#include "statemanager/absent_collaborators.h"

#include "support/fake_neighbours.h"
#include "support/fake_service_handler.h"

#include <gtest/gtest.h>

namespace ximo::ap::statemanager {
namespace {

TEST(Absent_collaborators, Take_nobodys_place_who_is_there) {
    std::shared_ptr<Service_handler_interface> const services = std::make_shared<test_support::Fake_service_handler>();
    std::shared_ptr<Em_interface_abstract> const em = std::make_shared<test_support::Fake_execution_management>();
    std::shared_ptr<state_notifier::State_notifier_interface> const notifier =
        std::make_shared<test_support::Fake_state_notifier>();
    EXPECT_EQ(or_absent(services), services);
    EXPECT_EQ(or_absent(em), em);
    EXPECT_EQ(or_absent(notifier), notifier);
}

TEST(Absent_collaborators, Leave_a_network_that_nobody_uses_and_that_never_sleeps) {
    auto const sut = or_absent(std::shared_ptr<Service_handler_interface>());
    EXPECT_FALSE(sut->init());
    EXPECT_FALSE(sut->nm_interface_available());
    EXPECT_FALSE(sut->apps_keep_com_alive());
    EXPECT_FALSE(sut->apps_keep_ecu_alive());
    EXPECT_FALSE(sut->is_network_in_use());
    EXPECT_FALSE(sut->ecu_in_sleep_mode());
}

TEST(Absent_collaborators, Leave_an_execution_management_that_refuses) {
    auto const sut = or_absent(std::shared_ptr<Em_interface_abstract>());
    std::string state;
    ara::exec::Function_group_state_transition transition{};
    EXPECT_FALSE(sut->check_for_running_state());
    EXPECT_EQ(sut->StateClient_SetState("MachineState", "Running"), ara::exec::State_client_result::kRefused);
    EXPECT_EQ(sut->GetState("MachineState", state, transition), ara::exec::State_client_result::kRefused);
}

TEST(Absent_collaborators, Leave_nothing_to_wait_for) {
    auto const sut = or_absent(std::shared_ptr<state_notifier::State_notifier_interface>());
    sut->request_standby();
    EXPECT_EQ(sut->check_request_status(), 0U);
}

}  // namespace
}  // namespace ximo::ap::statemanager
