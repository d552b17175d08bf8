// What applications and diagnostics ask the machine for, through its services.

#include "network_machine.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class Services : public Network_story {};

class Services_without_network_management : public Network_story {
 protected:
    Services_without_network_management() { settings()["StateManagerNMUsage"] = false; }
};

TEST_F(Services, Keep_the_ECU_alive_for_an_application_until_the_last_one_releases_it) {
    start_and_run();
    request("1", k_ecu_alive);
    EXPECT_TRUE(logs("State_manager::ecu_alive_request:  1"));
    EXPECT_EQ(requests_of_node(), "01 00 01 00 00 00");
    request("2", k_ecu_alive);

    release("1", k_ecu_alive);
    EXPECT_EQ(requests_of_node(), "01 00 01 00 00 00");
    release("2", k_ecu_alive);

    EXPECT_TRUE(logs("State_manager::ecu_alive_release network"));
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");
}

TEST_F(Services, Keep_communication_alive_with_the_bits_of_an_application) {
    start_and_run();
    request("1", com_alive("02 80", 9));
    EXPECT_TRUE(logs("State_manager::handle_com_alive_request( 1 ,  02 80  ,  9 )"));
    EXPECT_EQ(requests_of_node(), "03 80 00 00 00 00");
    EXPECT_TRUE(sees(Kind::user_data, "80 00 01"));

    release("1", com_alive("ff ff"));
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");
    EXPECT_TRUE(logs("Releasing AC bit for application  1"));
    EXPECT_THAT(texts(Kind::user_data), ElementsAre("80 00 00", "80 00 01", "80 00 00"));
}

TEST_F(Services, Never_give_the_bits_of_the_default_pattern_back) {
    start_and_run();
    request("1", com_alive("03", 0));
    release("1", com_alive("03"));
    EXPECT_TRUE(logs("State_manager::release_network( 03 00 00 00  )"));
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");
}

TEST_F(Services_without_network_management, Are_but_one) {
    Story::start_and_run();
    restart(5);
    EXPECT_TRUE(sees(Kind::restart_word, "restartm3"));
    EXPECT_THROW(machine->tell("application 1", {{"do", "request"}, {"what", "ecu_alive"}}), std::runtime_error);
    EXPECT_EQ(requests_of_node(), "00 00 00 00 00 00");
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::log), Contains("NM usage is disabled"));
    EXPECT_THAT(texts(Kind::log), Not(Contains("Offering ECU alive services")));
    EXPECT_THAT(texts(Kind::user_data), IsEmpty());
}

TEST_F(Services, Are_offered_once_where_an_instance_is_named_twice) {
    settings()["MaxNumberOfApplicationsRequestNetwork"] = 2;
    settings()["ApplicationsRequestNetworkConfig"] = {{{"NetworkAliveInterfaceInstance", "1"}},
                                                      {{"NetworkAliveInterfaceInstance", "1"}}};
    start_and_run();
    EXPECT_TRUE(logs("infrastructure exception  This process offers the instance already: 1"));
    request("1", com_alive("02", 1));
    EXPECT_EQ(requests_of_node(), "03 00 00 00 00 00");
}

TEST_F(Services, Are_none_for_applications_where_nobody_may_use_them) {
    for (auto const* maximum :
         {"MaxNumberOfApplicationsRequestAlive", "MaxNumberOfApplicationsRequestNetwork", "MaxNumberOfCWURequest"}) {
        settings()[maximum] = 0;
    }
    start_and_run();
    EXPECT_TRUE(logs("Offering CWU services"));
    restart(1);
    EXPECT_TRUE(sees(Kind::restart_word, "restartao"));
    for (auto const* what : {"ecu_alive", "cwu"}) {
        EXPECT_THROW(machine->tell("application 1", {{"do", "release"}, {"what", what}}), std::runtime_error) << what;
    }
}

TEST_F(Services, End_with_the_daemon) {
    start_and_run();
    request("1", k_ecu_alive);
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    EXPECT_THROW(machine->tell("application 1", {{"do", "release"}, {"what", "ecu_alive"}}), std::runtime_error);

    machine->take_events();
    machine->start_daemon();
    ASSERT_TRUE(sees(Kind::state_word, "running"));
    release("1", k_ecu_alive);
    EXPECT_TRUE(logs("State_manager::ecu_alive_release network"));
}

TEST_F(Services, Are_those_of_a_configuration_whose_instances_are_identifiers) {
    settings()["CWURequestConfig"] = {{{"CWUInterfaceInstance", "1,2"}}};
    options.with_network = false;
    start();
    EXPECT_TRUE(ends_with(255));
    EXPECT_THAT(texts(Kind::state_word), IsEmpty());
    auto const logged = machine->events();
    EXPECT_TRUE(std::any_of(logged.begin(), logged.end(), [](Event const& event) {
        return event.kind == Kind::log && event.level == 1 && event.text.rfind("AP_StateManger is aborted: ", 0) == 0;
    }));
}

}  // namespace
}  // namespace bench::vehicle
