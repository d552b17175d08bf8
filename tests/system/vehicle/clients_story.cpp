#include "story.h"
#include "support/test_client.h"

#include <filesystem>

namespace bench::vehicle {
namespace {

using test_support::Test_client;
using testing::Contains;
using testing::HasSubstr;

class Clients : public Story {
 protected:
    Clients() { options.clients.clear(); }  // the test plays them

    void TearDown() override { std::filesystem::remove_all("/run/adaptive/ara_SM"); }

    static Test_client client(std::string const& name) { return {utilities::get_socket_path(), name, "kOn"}; }

    bool is_connected(std::string const& name) { return logs("client connected: name =  " + name); }
};

TEST_F(Clients, Are_asked_in_their_order_before_a_suspend_and_after_it) {
    start_and_run();
    auto dcm = client("diag::dcm");
    auto radio = client("radio");
    auto dem = client("diag::dem");
    ASSERT_TRUE(is_connected("diag::dcm") && is_connected("radio") && is_connected("diag::dem"));

    machine->press("p");
    EXPECT_EQ(dcm.obey().state, "kPrepSD");
    EXPECT_EQ(radio.obey().state, "kPrepSD");
    EXPECT_THAT(texts(Kind::state_word), testing::Not(Contains("prepared4sd"))) << "one still owes its answer";
    EXPECT_EQ(dem.obey().state, "kPrepSD");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));

    machine->press("r");
    EXPECT_EQ(dem.obey().state, "kOn");
    EXPECT_EQ(radio.obey().state, "kOn");
    EXPECT_EQ(dcm.obey().state, "kOn");
    EXPECT_TRUE(logs("AP_StateManger transition from Resuming  to  Running"));
}

TEST_F(Clients, That_stay_silent_cost_their_time_and_are_named_in_the_log) {
    settings()["ApplicationSuspendRequestTimeout"] = 1;
    start_and_run();
    auto const radio = client("radio");
    ASSERT_TRUE(is_connected("radio"));
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
    EXPECT_TRUE(logs("calling callback after some clients timed out"));
    EXPECT_TRUE(logs("State notification client [ radio ] timed out"));
}

TEST_F(Clients, Are_turned_back_by_a_resume_in_the_middle_of_a_suspend) {
    start_and_run();
    auto dcm = client("diag::dcm");
    auto radio = client("radio");
    ASSERT_TRUE(is_connected("diag::dcm") && is_connected("radio"));
    machine->press("p");
    EXPECT_EQ(dcm.obey().state, "kPrepSD");
    auto const asked = radio.receive();
    machine->press("r");
    ASSERT_TRUE(sees(Kind::state_word, "resuming"));
    radio.answer(asked.number, asked.state);
    EXPECT_EQ(radio.obey().state, "kOn");
    EXPECT_EQ(dcm.obey().state, "kOn");
    EXPECT_TRUE(logs("AP_StateManger transition from Resuming  to  Running"));
    EXPECT_THAT(texts(Kind::state_word), testing::Not(Contains("prepared4sd")));
}

TEST_F(Clients, Are_not_needed_and_neither_is_the_socket) {
    std::filesystem::create_directories("/run/adaptive");
    std::ofstream("/run/adaptive/ara_SM") << "in the way";
    start_and_run();
    EXPECT_TRUE(logs("Client_states_impl thread crashed: "));
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
    machine->press("r");
    EXPECT_TRUE(logs("AP_StateManger transition from Resuming  to  Running"));
}

}  // namespace
}  // namespace bench::vehicle
