#include "statemanager/service_handler/nm_interface_abstract.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/services/dsa_interface.h"
#include "statemanager/services/ecu_alive_interface.h"
#include "statemanager/services/state_manager_com_alive_interface_abstract.h"
#include "statemanager/services/state_manager_cwu_interface_abstract.h"
#include "support/virtual_slot.h"

#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

TEST(Virtual_operations, The_ECU_alive_service_has_them_in_the_order_of_the_interface) {
    using Sut = services::Ecu_alive_interface;
    test_support::expect_slots_from(1, &Sut::ReleaseAlive, &Sut::RequestAlive, &Sut::app_keeps_ecu_alive,
                                    &Sut::get_instance_id, &Sut::promise_request_alive, &Sut::promise_release_alive);
}

TEST(Virtual_operations, The_ECU_alive_callback_has_them_in_the_order_of_the_interface) {
    using Sut = services::Ecu_alive_interface_callback;
    test_support::expect_slots_from(1, &Sut::ecu_alive_request, &Sut::ecu_alive_release);
}

TEST(Virtual_operations, The_COM_alive_service_has_them_in_the_order_of_the_interface) {
    using Sut = State_manager_com_alive_interface_abstract;
    test_support::expect_slots_from(1, &Sut::ReleaseComAlive, &Sut::RequestComAlive, &Sut::get_instance_id,
                                    &Sut::set_com_alive_request_cb, &Sut::set_com_alive_release_cb,
                                    &Sut::promise_request_com_alive_get_future,
                                    &Sut::promise_release_com_alive_get_future);
}

TEST(Virtual_operations, The_car_wake_up_service_has_them_in_the_order_of_the_interface) {
    using Sut = State_manager_cwu_interface_abstract;
    test_support::expect_slots_from(1, &Sut::ReleaseCarWakeUp, &Sut::RequestCarWakeUp, &Sut::get_instance_id,
                                    &Sut::set_cwu_request_cb, &Sut::set_cwu_release_cb,
                                    &Sut::promise_request_cwu_get_future, &Sut::promise_release_cwu_get_future);
}

TEST(Virtual_operations, The_restart_service_has_them_in_the_order_of_the_interface) {
    using Sut = services::Dsa_interface;
    test_support::expect_slots_from(1, &Sut::RequestRestart, &Sut::promise_get_future);
}

TEST(Virtual_operations, The_client_of_network_management_has_them_in_the_order_of_the_interface) {
    using Sut = Nm_interface_abstract;
    test_support::expect_slots_from(1, &Sut::release_network, &Sut::request_network, &Sut::set_user_data,
                                    &Sut::start_find_services, &Sut::set_network_state_updated_func);
}

TEST(Virtual_operations, The_service_handler_has_them_in_the_order_of_the_interface) {
    using Sut = Service_handler_interface;
    test_support::expect_slots_from(1, &Sut::init, &Sut::deinit, &Sut::nm_interface_available,
                                    &Sut::apps_keep_com_alive, &Sut::apps_keep_ecu_alive, &Sut::is_network_in_use,
                                    &Sut::ecu_in_sleep_mode, &Sut::request_network, &Sut::release_network,
                                    &Sut::standby, &Sut::end_standby);
}

}  // namespace
}  // namespace ximo::ap::statemanager
