// What the network does to the machine, and what becomes of it when the network manager fails.

#include "network_machine.h"
#include "support/eventually.h"
#include "tool.h"

#include <filesystem>
#include <future>
#include <iterator>
#include <thread>

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;

class Network : public Network_story {
 protected:
    /// Before the daemon starts: the node without its services.
    void build_without_manager() {
        build();
        tell_node({{"do", "withdraw"}});
    }

    /// The process of the machine's node.
    static pid_t node() {
        for (auto const& entry : std::filesystem::directory_iterator("/proc")) {
            std::ifstream file(entry.path() / "cmdline");
            std::string const words{std::istreambuf_iterator<char>(file), {}};
            if (words.find("bench_network_node") != std::string::npos && words.find("--offer") != std::string::npos) {
                return std::stoi(entry.path().filename());
            }
        }
        throw std::runtime_error("the machine has no node");
    }

    bool logs_a_failed_call() const {
        auto const logged = texts(Kind::log);
        return std::any_of(logged.begin(), logged.end(),
                           [](auto const& text) { return text.rfind("infrastructure exception", 0) == 0; });
    }
};

class Network_stalls : public Network, public testing::WithParamInterface<std::chrono::milliseconds> {};

TEST_F(Network, Is_awaited_before_the_machine_runs) {
    build_without_manager();
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

TEST_F(Network, Manager_may_go_and_come_back) {
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

TEST_F(Network, Manager_may_refuse) {
    start_and_run();
    tell_node({{"do", "reaction"}, {"method", "RequestNetwork"}, {"refuse", true}});
    request("1", com_alive("02", 1));
    EXPECT_TRUE(logs("infrastructure exception  The service failed to handle the call"));
    EXPECT_TRUE(sees(Kind::user_data, "80 01 00"));
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");
}

TEST_F(Network, Manager_may_never_answer) {
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

// The daemon hears of the offers, and the manager stands still before they are connected.
TEST_P(Network_stalls, Of_a_manager_that_was_just_found_lose_nothing) {
    build_without_manager();
    tell_node({{"do", "request"}, {"bits", "02"}});  // as an earlier life of the daemon may have left it
    start();
    ASSERT_TRUE(logs("Could not find UserData service"));
    machine->signal_daemon(SIGSTOP);
    tell_node({{"do", "offer"}});
    ::kill(node(), SIGSTOP);
    machine->signal_daemon(SIGCONT);
    ASSERT_TRUE(logs("Found UserData service"));
    std::this_thread::sleep_for(GetParam());
    ::kill(node(), SIGCONT);

    EXPECT_TRUE(sees(Kind::user_data, "80 00 00"));
    EXPECT_TRUE(sees(Kind::state_word, "running"));
    EXPECT_TRUE(sees(Kind::network_state, "01 00 00 00 00 00"));
    EXPECT_EQ(requests_of_node(), "01 00 00 00 00 00");
    EXPECT_FALSE(logs_a_failed_call());
}

INSTANTIATE_TEST_SUITE_P(Up_to_the_time_of_a_call, Network_stalls,
                         testing::Values(std::chrono::milliseconds(500), std::chrono::milliseconds(1800)),
                         [](auto const& stall) { return "Of_" + std::to_string(stall.param.count()) + "_ms"; });

TEST_F(Network, Manager_that_never_answers_makes_applications_wait_and_fails_none_of_them) {
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

TEST_F(Network, Manager_that_is_slow_does_not_hold_up_the_daemon) {
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

/// What the daemon can't have at first: the engine's readers, and the binding's threads.
struct Refused {
    std::string library;
    std::string variable;
    char const* what;

    friend std::ostream& operator<<(std::ostream& out, Refused const& refused) { return out << refused.what; }
};

class Network_refused : public Network, public testing::WithParamInterface<Refused> {};

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
