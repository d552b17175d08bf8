// Numbers that are sent, logged or compared with others, and the order of the operations of both interfaces.

#include "client_state_notifier/client_states.h"
#include "state_notifier/state_notifier_interface.h"
#include "support/virtual_slot.h"
#include "utilities/logger.h"

#include <gmock/gmock.h>

namespace client_state_notifier {
namespace {

using ximo::ap::statemanager::state_notifier::State_notifier_interface;

template <class Enumeration>
unsigned number(Enumeration value) {
    return static_cast<unsigned>(value);
}

TEST(Client_statuses, Have_the_numbers_that_clients_send) {
    EXPECT_EQ(sizeof(Component_client_return_type), 1U);
    EXPECT_EQ(number(Component_client_return_type::succeeded), 0U);
    EXPECT_EQ(number(Component_client_return_type::general_error), 1U);
    EXPECT_EQ(number(Component_client_return_type::invalid), 2U);
    EXPECT_EQ(number(Component_client_return_type::timed_out), 3U);
}

TEST(Callback_statuses, Have_the_numbers_that_the_log_shows) {
    EXPECT_EQ(sizeof(Callback_status), 4U);
    EXPECT_EQ(number(Callback_status::succeeded), 0U);
    EXPECT_EQ(number(Callback_status::timed_out), 1U);
    EXPECT_EQ(number(Callback_status::failed), 2U);
}

TEST(Client_states_interface, Has_its_operations_in_their_order) {
    test_support::expect_slots_from(1, &Client_states::get_connected_clients, &Client_states::set_default_state,
                                    &Client_states::request_state_change);
}

TEST(State_notifier_interface, Has_its_operations_in_their_order) {
    test_support::expect_slots_from(1, &State_notifier_interface::request_standby,
                                    &State_notifier_interface::request_resume,
                                    &State_notifier_interface::check_request_status);
}

TEST(Log_of_the_notification, Has_one_context_with_its_description) {
    EXPECT_EQ(&utilities::get_logger(), &utilities::get_logger());
    EXPECT_EQ(utilities::get_logger().context().id, "SNCC");
    EXPECT_EQ(utilities::get_logger().context().description, "state notification lib and client states logger");
}

}  // namespace
}  // namespace client_state_notifier
