#include "bench/tour/tour.h"
#include "story.h"

#include <chrono>
#include <optional>

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::HasSubstr;

/// A machine with a network around it.
class Surroundings_story : public Story {
 protected:
    Surroundings_story() {
        configuration.merge_patch(tour::configuration_changes());
        options.with_network = true;
    }

    void tell(std::string const& neighbour, nlohmann::json const& command) { machine->tell(neighbour, command); }
    void request(std::string const& application, nlohmann::json what) {
        what["do"] = "request";
        tell("application " + application, what);
    }

    /// How often the machine has been told a network state.
    std::ptrdiff_t told(std::string const& state) {
        auto const states = texts(Kind::network_state);
        return std::count(states.begin(), states.end(), state);
    }

    /// Waits for an event after those so far.
    bool sees_new(Kind kind, std::string const& text) {
        auto const position = machine->await(kind, text, seen_);
        seen_ = position.value_or(seen_) + 1;
        return position.has_value();
    }
    void look_from_here() { seen_ = machine->events().size(); }

    static constexpr char const* k_rest = "00 00 00 00 00 00";

 private:
    std::size_t seen_ = 0;
};

TEST_F(Surroundings_story, Network_falls_asleep_when_the_node_that_needs_it_falls_silent) {
    start_and_run();
    request("2", {{"what", "ecu_alive"}});
    tell("other node", {{"do", "request"}, {"bits", "80"}});
    ASSERT_TRUE(sees(Kind::network_state, "80 00 01 00 00 00"));
    machine->press("n");
    ASSERT_TRUE(sees(Kind::network_state, "80 00 00 00 00 00"));
    EXPECT_EQ(told(k_rest), 0);
    tell("other node", {{"do", "silence"}});
    EXPECT_TRUE(sees(Kind::state_word, "postrun"));
    EXPECT_EQ(told(k_rest), 2);
}

// An application keeps communication, but nothing on the bus, and another one the ECU.
TEST_F(Surroundings_story, Network_asleep_lets_the_machine_alternate_between_two_wishes) {
    start_and_run();
    request("2", {{"what", "ecu_alive"}});
    machine->press("n");
    ASSERT_TRUE(sees(Kind::state_word, "postrun"));
    look_from_here();
    request("1", {{"what", "cwu"}});
    for (auto const* const word : {"runnmcontrolled", "postrun", "runnmcontrolled", "postrun"}) {
        EXPECT_TRUE(sees_new(Kind::state_word, word)) << word;
    }
}

TEST_F(Surroundings_story, Network_manager_that_is_killed_does_not_stop_the_machine) {
    start_and_run();
    machine->surroundings().kill("node");
    request("1", {{"what", "com_alive"}, {"bits", "02"}, {"ac", 1}});
    EXPECT_TRUE(logs("infrastructure exception"));
    auto const logged = texts(Kind::log);
    EXPECT_THAT(logged, Contains(HasSubstr("Service not available exception")));
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
}

TEST_F(Surroundings_story, Network_manager_that_comes_back_is_used_again) {
    start_and_run();
    machine->surroundings().kill("node");
    machine->surroundings().start("node");
    look_from_here();
    tell("other node", {{"do", "request"}, {"bits", "80"}});
    EXPECT_TRUE(sees_new(Kind::log, "Ecu state based on NM activity: active"));
    look_from_here();
    // Its two services come back one after the other, and what is sent before the second one is lost.
    std::optional<std::size_t> arrived;
    for (int attempt = 0; attempt < 20 && !arrived; ++attempt) {
        tell("application 1", {{"do", "release"}, {"what", "com_alive"}, {"bits", "02"}});
        request("1", {{"what", "com_alive"}, {"bits", "02"}, {"ac", 1}});
        arrived = machine->await(Kind::user_data, "80 01 00 02 00 00", 0, std::chrono::milliseconds(500));
    }
    EXPECT_TRUE(arrived);
    EXPECT_TRUE(sees_new(Kind::network_state, "82 00 00 00 00 00"));
}

TEST_F(Surroundings_story, Services_of_the_machine_go_with_it) {
    start_and_run();
    request("1", {{"what", "cwu"}});
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    EXPECT_THROW(request("1", {{"what", "cwu"}}), std::runtime_error);
    look_from_here();
    start();
    ASSERT_TRUE(sees_new(Kind::state_word, "running"));
    EXPECT_NO_THROW(request("1", {{"what", "cwu"}}));
}

TEST_F(Surroundings_story, Machine_without_network_management_has_only_the_service_for_diagnostics) {
    settings()["StateManagerNMUsage"] = false;
    start_and_run();
    EXPECT_NO_THROW(tell("application 1", {{"do", "restart"}, {"type", 2}}));
    EXPECT_THROW(request("1", {{"what", "ecu_alive"}}), std::runtime_error);
    EXPECT_EQ(texts(Kind::user_data), std::vector<std::string>());
}

}  // namespace
}  // namespace bench::vehicle
