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

using test_support::virtual_slot;
using testing::ElementsAre;

TEST(Virtual_operations, The_ECU_alive_service_has_them_in_the_order_of_the_interface) {
    using Sut = services::Ecu_alive_interface;
    std::vector<std::size_t> const slots{
        virtual_slot(&Sut::ReleaseAlive),          virtual_slot(&Sut::RequestAlive),
        virtual_slot(&Sut::app_keeps_ecu_alive),   virtual_slot(&Sut::get_instance_id),
        virtual_slot(&Sut::promise_request_alive), virtual_slot(&Sut::promise_release_alive)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(Virtual_operations, The_ECU_alive_callback_has_them_in_the_order_of_the_interface) {
    using Sut = services::Ecu_alive_interface_callback;
    std::vector<std::size_t> const slots{virtual_slot(&Sut::ecu_alive_request), virtual_slot(&Sut::ecu_alive_release)};

    EXPECT_THAT(slots, ElementsAre(1, 2));
}

TEST(Virtual_operations, The_COM_alive_service_has_them_in_the_order_of_the_interface) {
    using Sut = State_manager_com_alive_interface_abstract;
    std::vector<std::size_t> const slots{virtual_slot(&Sut::ReleaseComAlive),
                                         virtual_slot(&Sut::RequestComAlive),
                                         virtual_slot(&Sut::get_instance_id),
                                         virtual_slot(&Sut::set_com_alive_request_cb),
                                         virtual_slot(&Sut::set_com_alive_release_cb),
                                         virtual_slot(&Sut::promise_request_com_alive_get_future),
                                         virtual_slot(&Sut::promise_release_com_alive_get_future)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST(Virtual_operations, The_car_wake_up_service_has_them_in_the_order_of_the_interface) {
    using Sut = State_manager_cwu_interface_abstract;
    std::vector<std::size_t> const slots{virtual_slot(&Sut::ReleaseCarWakeUp),
                                         virtual_slot(&Sut::RequestCarWakeUp),
                                         virtual_slot(&Sut::get_instance_id),
                                         virtual_slot(&Sut::set_cwu_request_cb),
                                         virtual_slot(&Sut::set_cwu_release_cb),
                                         virtual_slot(&Sut::promise_request_cwu_get_future),
                                         virtual_slot(&Sut::promise_release_cwu_get_future)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST(Virtual_operations, The_restart_service_has_them_in_the_order_of_the_interface) {
    using Sut = services::Dsa_interface;
    std::vector<std::size_t> const slots{virtual_slot(&Sut::RequestRestart), virtual_slot(&Sut::promise_get_future)};

    EXPECT_THAT(slots, ElementsAre(1, 2));
}

TEST(Virtual_operations, The_client_of_network_management_has_them_in_the_order_of_the_interface) {
    using Sut = Nm_interface_abstract;
    std::vector<std::size_t> const slots{virtual_slot(&Sut::release_network), virtual_slot(&Sut::request_network),
                                         virtual_slot(&Sut::set_user_data), virtual_slot(&Sut::start_find_services),
                                         virtual_slot(&Sut::set_network_state_updated_func)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3, 4, 5));
}

TEST(Virtual_operations, The_service_handler_has_them_in_the_order_of_the_interface) {
    using Sut = Service_handler_interface;
    std::vector<std::size_t> const slots{virtual_slot(&Sut::init),
                                         virtual_slot(&Sut::deinit),
                                         virtual_slot(&Sut::nm_interface_available),
                                         virtual_slot(&Sut::apps_keep_com_alive),
                                         virtual_slot(&Sut::apps_keep_ecu_alive),
                                         virtual_slot(&Sut::is_network_in_use),
                                         virtual_slot(&Sut::ecu_in_sleep_mode),
                                         virtual_slot(&Sut::request_network),
                                         virtual_slot(&Sut::release_network),
                                         virtual_slot(&Sut::standby),
                                         virtual_slot(&Sut::end_standby)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
}

}  // namespace
}  // namespace ximo::ap::statemanager
