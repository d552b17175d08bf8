// What the network does to the machine.

#include "network_machine.h"

namespace bench::vehicle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;

class Network : public Network_story {};

TEST_F(Network, Is_awaited_before_the_machine_runs) {
    build();
    tell_node({{"do", "withdraw"}});
    start();
    ASSERT_TRUE(logs("Could not find NetworkState service"));
    ASSERT_TRUE(logs("Could not find UserData service"));
    ASSERT_TRUE(logs("Transition form startup to running not possible. Waiting for nm interface."));
    EXPECT_THAT(texts(Kind::state_word), ElementsAre("startingup"));

    tell_node({{"do", "offer"}});

    EXPECT_TRUE(sees(Kind::state_word, "running"));
    for (auto const* text : {"Found NetworkState service", "Stopping NetworkState service lookup",
                             "Found UserData service", "Stopping UserData service lookup", "Initializing user data",
                             "Offering ECU alive services", "Offering COM alive services", "Offering CWU services"}) {
        EXPECT_TRUE(logs(text)) << text;
    }
    EXPECT_THAT(texts(Kind::user_data), ElementsAre("80 00 00"));
    EXPECT_TRUE(sees(Kind::network_state, "01 00 00 00 00 00"));
    EXPECT_TRUE(logs("We received the notification that network was updated:  01 00 00 00 00 00"));
}

TEST_F(Network, Lets_the_machine_go_when_it_has_been_at_rest_twice) {
    start_and_run();
    machine->press("n");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::state_word), ElementsAre("startingup", "running", "runnmcontrolled", "shuttingdown"));
    EXPECT_THAT(texts(Kind::log),
                IsSupersetOf({"Ecu state based on NM activity: active", "Ecu state based on NM activity: ready sleep",
                              "Ecu state based on NM activity: inactive (sleep mode)"}));
}

TEST_F(Network, Keeps_the_machine_as_long_as_an_application_needs_communication) {
    start_and_run();
    request("1", com_alive("02", 1));
    machine->press("s");
    ASSERT_TRUE(sees(Kind::state_word, "runnmcontrolled"));
    ASSERT_TRUE(sees(Kind::network_state, "02 00 00 00 00 00"));

    release("1", com_alive("02"));

    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
}

TEST_F(Network, Keeps_the_machine_as_long_as_another_node_needs_it) {
    start_and_run();
    machine->tell("other node", {{"do", "request"}, {"bits", "00 00 00 00 10"}});
    ASSERT_TRUE(sees(Kind::network_state, "01 00 00 00 10 00"));
    machine->press("n");
    ASSERT_TRUE(sees(Kind::network_state, "00 00 00 00 10 00"));
    machine->tell("other node", {{"do", "release"}, {"bits", "00 00 00 00 10"}});
    EXPECT_TRUE(ends_with(0));
}

TEST_F(Network, Hears_nothing_during_a_suspend_and_everything_after_it) {
    start_and_run();
    request("1", com_alive("02", 3));
    request("1", k_ecu_alive);
    machine->press("p");
    ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
    EXPECT_TRUE(sees(Kind::user_data, "00 00 00"));
    EXPECT_EQ(requests_of_node(), "00 00 01 00 00 00");  // the application holds on
    request("1", com_alive("04", 3));
    release("1", k_ecu_alive);
    EXPECT_EQ(requests_of_node(), "00 00 01 00 00 00");

    machine->press("r");
    ASSERT_TRUE(logs("Start sending NM messages"));
    ASSERT_TRUE(logs("AP_StateManger transition from Resuming  to  Running"));
    EXPECT_TRUE(sees(Kind::user_data, "80 04 00 06 00 00"));
    EXPECT_EQ(requests_of_node(), "07 00 00 00 00 00");
}

/// An application keeps the ECU alive up to a suspend and gives it up before the resume.
class Ecu_given_up_in_a_suspend : public Network {
 protected:
    void give_up_and_resume(char const* default_pattern) {
        Story::start_and_run();
        ASSERT_TRUE(sees(Kind::network_state, default_pattern));
        request("1", k_ecu_alive);
        machine->press("p");
        ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
        release("1", k_ecu_alive);
        machine->press("r");
        ASSERT_TRUE(logs("AP_StateManger transition from Resuming  to  Running"));
    }
};

TEST_F(Ecu_given_up_in_a_suspend, Lets_the_network_rest_after_the_resume) {
    give_up_and_resume("01 00 00 00 00 00");
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");

    machine->press("n");
    EXPECT_TRUE(ends_with(0));
}

TEST_F(Ecu_given_up_in_a_suspend, Leaves_the_bit_to_the_states_whose_default_pattern_has_it) {
    settings()["DefautNMRequestPattern"] = {1, 0, 1, 0, 0, 0};
    give_up_and_resume("01 00 01 00 00 00");
    EXPECT_EQ(requests_of_node(), "01 00 01 00 00 00");

    machine->press("n");
    EXPECT_TRUE(ends_with(0));
}

/// What is sent to the network manager whole: the user data, and the default pattern.
class Lengths : public Network {
 protected:
    void set(std::int64_t user_data_bytes, std::size_t pattern_bytes) {
        std::vector<int> pattern(pattern_bytes);
        pattern.front() = 1;
        settings()["NmUserDataConfig"]["UserDataBytes"] = user_data_bytes;
        settings()["DefautNMRequestPattern"] = pattern;
    }
};

TEST_F(Lengths, Of_1024_bytes_reach_the_network_manager) {
    set(1024, 1024);
    settings()["NmUserDataConfig"]["CabBitsEnabled"] = true;
    start_and_run();  // the pattern came
    EXPECT_THAT(texts(Kind::user_data), ElementsAre(SizeIs(1024 * 3 - 1)));
}

TEST_F(Lengths, Beyond_1024_bytes_end_the_start_with_status_255) {
    set(-1, 6);
    start();
    EXPECT_TRUE(ends_with(255));
    auto const* const text =
        "AP_StateManger is aborted:  UserDataBytes says 4294967295 bytes, "
        "and network management takes 1024 at most";
    EXPECT_EQ(level_of(text), 1);
    EXPECT_THAT(texts(Kind::state_word), IsEmpty());
}

TEST_F(Lengths, Stay_unused_without_network_management) {
    set(-1, 1025);
    settings()["StateManagerNMUsage"] = false;
    Story::start_and_run();
}

}  // namespace
}  // namespace bench::vehicle
