// What becomes of the machine when the network manager fails.

#include "network_machine.h"
#include "support/eventually.h"
#include "tool.h"

#include <future>
#include <thread>

namespace bench::vehicle {
namespace {

class Network_manager : public Network_story {
 protected:
    /// Before the daemon starts: the node without its services.
    void build_without_manager() {
        build();
        tell_node({{"do", "withdraw"}});
    }

    bool logs_a_failed_call() const {
        auto const logged = texts(Kind::log);
        return std::any_of(logged.begin(), logged.end(),
                           [](auto const& text) { return text.rfind("infrastructure exception", 0) == 0; });
    }
};

TEST_F(Network_manager, May_go_and_come_back) {
    start_and_run();
    tell_node({{"do", "withdraw"}});
    request("1", com_alive("02", 1));
    ASSERT_TRUE(logs("infrastructure exception  Service not available exception"));

    // What is asked for before the daemon has heard of the offer is dropped, like the first request.
    tell_node({{"do", "offer"}});
    EXPECT_TRUE(test_support::eventually([this] {
        release("1", com_alive("04"));
        request("1", com_alive("04", 1));
        return requests_of_node() == "05 00 00 00 00 00";
    }));
    EXPECT_TRUE(logs("State_manager::request_network( 04 00 00 00  )"));
    machine->tell("other node", {{"do", "request"}, {"bits", "20"}});
    EXPECT_TRUE(logs("We received the notification that network was updated:  25 00 00 00 00 00"));
}

TEST_F(Network_manager, May_be_killed_and_started_again) {
    start_and_run();
    machine->surroundings().kill("node");
    request("1", com_alive("02", 1));
    EXPECT_TRUE(logs("infrastructure exception"));
    EXPECT_THAT(texts(Kind::log), testing::Contains(testing::HasSubstr("Service not available exception")));

    machine->surroundings().start("node");
    machine->tell("other node", {{"do", "request"}, {"bits", "20"}});
    EXPECT_TRUE(test_support::eventually([this] {  // as above
        release("1", com_alive("04"));
        request("1", com_alive("04", 1));
        return requests_of_node() == "04 00 00 00 00 00";
    }));
    EXPECT_TRUE(sees(Kind::network_state, "24 00 00 00 00 00"));
}

TEST_F(Network_manager, May_refuse) {
    start_and_run();
    tell_node({{"do", "reaction"}, {"method", "RequestNetwork"}, {"refuse", true}});
    request("1", com_alive("02", 1));
    EXPECT_TRUE(logs("infrastructure exception  The service failed to handle the call"));
    EXPECT_TRUE(sees(Kind::user_data, "80 01 00"));
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");
}

TEST_F(Network_manager, May_never_answer) {
    start_and_run();
    tell_node({{"do", "reaction"}, {"method", "RequestNetwork"}, {"silent", true}});
    request("1", com_alive("02", 0));
    EXPECT_TRUE(logs("infrastructure exception  The service did not answer in time"));

    auto const before = machine->events().size();
    tell_node({{"do", "withdraw"}});
    tell_node({{"do", "offer"}});
    EXPECT_TRUE(test_support::eventually([this] {  // as above
        request("1", com_alive("02", 0));
        release("1", com_alive("02"));
        return requests_of_node() == "01 00 00 00 00 00";
    }));
    EXPECT_TRUE(machine->await(Kind::network_state, "01 00 00 00 00 00", before).has_value());
}

class Network_stalls : public Network_manager, public testing::WithParamInterface<std::chrono::milliseconds> {};

// The daemon hears of the offers, and the manager stands still before they are connected.
TEST_P(Network_stalls, Of_a_manager_that_was_just_found_lose_nothing) {
    build_without_manager();
    tell_node({{"do", "request"}, {"bits", "02"}});  // as an earlier life of the daemon may have left it
    start();
    ASSERT_TRUE(logs("Could not find UserData service"));
    machine->signal_daemon(SIGSTOP);
    tell_node({{"do", "offer"}});
    machine->process("node").signal(SIGSTOP);
    machine->signal_daemon(SIGCONT);
    ASSERT_TRUE(logs("Found UserData service"));
    std::this_thread::sleep_for(GetParam());
    machine->process("node").signal(SIGCONT);

    EXPECT_TRUE(sees(Kind::user_data, "80 00 00"));
    EXPECT_TRUE(sees(Kind::state_word, "running"));
    EXPECT_TRUE(sees(Kind::network_state, "01 00 00 00 00 00"));
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");
    EXPECT_FALSE(logs_a_failed_call());
}

INSTANTIATE_TEST_SUITE_P(Up_to_the_time_of_a_call, Network_stalls,
                         testing::Values(std::chrono::milliseconds(500), std::chrono::milliseconds(1800)),
                         [](auto const& stall) { return "Of_" + std::to_string(stall.param.count()) + "_ms"; });

TEST_F(Network_manager, That_never_answers_makes_applications_wait_and_fails_none_of_them) {
    start_and_run();
    tell_node({{"do", "reaction"}, {"method", "RequestNetwork"}, {"silent", true}, {"count", 3}});
    std::vector<std::future<Outcome>> calls;
    for (std::vector<std::string> const& words : {std::vector<std::string>{"ecu-alive", "request", "1"},
                                                  {"ecu-alive", "request", "2"},
                                                  {"com-alive", "request", "1", "--bits", "02"},
                                                  {"cwu", "request", "1"}}) {
        calls.push_back(std::async(std::launch::async, [words] { return statectl(words); }));
    }
    for (auto& call : calls) {
        auto const outcome = call.get();
        EXPECT_EQ(outcome.status, 0) << outcome.output;
    }
    EXPECT_TRUE(sees(Kind::user_data, "c0 00 00"));
}

TEST_F(Network_manager, That_is_slow_does_not_hold_up_the_daemon) {
    settings()["StateManagerMainPeriod"] = 10;
    start_and_run();
    tell_node({{"do", "reaction"}, {"method", "RequestNetwork"}, {"delay_ms", 500}});
    auto const before = texts(Kind::watchdog).size();
    auto const start = std::chrono::steady_clock::now();

    request("1", com_alive("02", 0));

    auto const taken = std::chrono::steady_clock::now() - start;
    machine->watch(std::chrono::milliseconds(50));
    EXPECT_GE(taken, std::chrono::milliseconds(500));
    EXPECT_GE(texts(Kind::watchdog).size() - before, 20U);  // 50 cycles fit into that time
}

/// What the daemon can't have at first: the engine's readers, and the binding's threads.
struct Refused {
    std::string library;
    std::string variable;
    char const* what;

    friend std::ostream& operator<<(std::ostream& out, Refused const& refused) { return out << refused.what; }
};

class Network_refused : public Network_manager, public testing::WithParamInterface<Refused> {};

TEST_P(Network_refused, Is_reached_at_the_next_try) {
    options.daemon_starter = {"/usr/bin/env", "LD_PRELOAD=" + GetParam().library, GetParam().variable,
                              "ASAN_OPTIONS=verify_asan_link_order=0"};
    start_and_run();
    EXPECT_TRUE(sees(Kind::user_data, "80 00 00"));
    EXPECT_TRUE(logs("We received the notification that network was updated:  01 00 00 00 00 00"));
    EXPECT_FALSE(logs_a_failed_call());
    EXPECT_EQ(statectl({"restart", "vm"}).status, 0);
}

// In the order in which they are made: what hears of offers, the way of the calls' replies for each of the two services
// and the field between them; the first worker, after which the engine starts its own threads, and the timer. What is
// started later has no number of its own.
INSTANTIATE_TEST_SUITE_P(Once, Network_refused,
                         testing::Values(Refused{NO_READER, "NO_READER=2", "Reader_of_offers"},
                                         Refused{NO_READER, "NO_READER=3", "First_reader_of_a_proxy"},
                                         Refused{NO_READER, "NO_READER=4", "Second_reader_of_a_proxy"},
                                         Refused{NO_READER, "NO_READER=5", "Third_reader_of_a_proxy"},
                                         Refused{NO_THREAD, "NO_THREAD=4", "First_worker"},
                                         Refused{NO_THREAD, "NO_THREAD=4x2", "First_worker_twice"},
                                         Refused{NO_THREAD, "NO_THREAD=11", "Timer"},
                                         Refused{NO_THREAD, "NO_THREAD=11x2", "Timer_twice"}),
                         [](auto const& instance) { return std::string(instance.param.what); });

}  // namespace
}  // namespace bench::vehicle
