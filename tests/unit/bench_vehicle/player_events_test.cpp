#include "bench/vehicle/player_events.h"

#include "bench/vehicle/surroundings.h"

#include <gmock/gmock.h>

namespace bench::vehicle {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

std::string text_of(Timeline const& events) {
    std::string text;
    for (auto const& event : events) {
        text += std::to_string(event.time) + ' ' + name(event.kind) + ' ' + event.text + '\n';
    }
    return text;
}

TEST(Events_of_the_hypervisor, Are_the_words_in_its_files) {
    EXPECT_EQ(
        text_of(events_of_hypervisor({{"event", "write"}, {"t", 5}, {"file", "set_status"}, {"text", "running"}})),
        "5 state word running\n");
    EXPECT_EQ(text_of(events_of_hypervisor(
                  {{"event", "write"}, {"t", 5}, {"file", "command_request"}, {"text", "restartao"}})),
              "5 restart word restartao\n");
    EXPECT_THAT(events_of_hypervisor({{"event", "open"}, {"t", 5}, {"file", "set_status"}}), IsEmpty());
}

TEST(Events_of_the_service_manager, Are_machine_states_and_what_services_report) {
    EXPECT_EQ(text_of(events_of_service_manager(
                  {{"event", "call"}, {"t", 1}, {"method", "StartUnit"}, {"unit", "MachineState-Running.target"}})),
              "1 machine state Running\n");
    EXPECT_EQ(text_of(events_of_service_manager(
                  {{"event", "call"}, {"t", 1}, {"method", "StartUnit"}, {"unit", "other.service"}})),
              "1 machine state other.service\n");
    EXPECT_EQ(text_of(events_of_service_manager(
                  {{"event", "notify"}, {"t", 2}, {"variables", {{"READY", "1"}, {"WATCHDOG", "1"}}}})),
              "2 notification READY\n2 watchdog WATCHDOG\n");
    EXPECT_THAT(events_of_service_manager({{"event", "call"}, {"t", 1}, {"method", "GetUnit"}}), IsEmpty());
}

TEST(Events_of_the_node, Are_the_bus_the_network_state_and_the_user_data) {
    EXPECT_EQ(text_of(events_of_node({{"event", "nm_state"}, {"t", 1}, {"from", "x"}, {"to", "bus sleep"}})),
              "1 bus bus sleep\n");
    EXPECT_EQ(text_of(events_of_node({{"event", "network_state"}, {"t", 2}, {"bits", "00 01"}})),
              "2 network state 00 01\n");
    EXPECT_EQ(text_of(events_of_node({{"event", "call"}, {"t", 3}, {"method", "SetUserData"}, {"bytes", "80"}})),
              "3 user data 80\n");
    EXPECT_THAT(events_of_node({{"event", "call"}, {"t", 3}, {"method", "GetUserData"}, {"bytes", ""}}), IsEmpty());
}

TEST(Names_of_applications, Are_those_of_all_three_services_each_once) {
    json const section{{"ApplicationsRequestAliveConfig",
                        {{{"EcuAliveInterfaceInstance", "1"}}, {{"EcuAliveInterfaceInstance", "2"}}}},
                       {"ApplicationsRequestNetworkConfig", {{{"NetworkAliveInterfaceInstance", "1"}}}},
                       {"CWURequestConfig", {{{"CWUInterfaceInstance", "3"}}, {{"CWUInterfaceInstance", ""}}}}};
    EXPECT_THAT(application_names({{"ap_statemanager", section}}), ElementsAre("1", "2", "3"));
    EXPECT_THAT(application_names(json::object()), IsEmpty());
}

}  // namespace
}  // namespace bench::vehicle
