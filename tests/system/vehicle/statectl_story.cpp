#include "bench/tour/tour.h"
#include "story.h"
#include "tool.h"

#include <chrono>
#include <csignal>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace bench::vehicle {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;

/// ap_statectl on a machine that runs.
class Statectl : public Story {
 protected:
    struct Result {
        std::optional<int> status;
        std::string output;
    };

    Statectl() {
        configuration.merge_patch(tour::configuration_changes());
        options.with_network = true;
    }

    Result statectl(std::vector<std::string> words) {
        words.insert(words.begin(), VEHICLE_BUILD "/tools/ap_statectl");
        Child_process process(words, {});
        auto const status = process.wait(Player::k_patience);
        return {status, output_of(process)};
    }

    static std::string output_of(Child_process& process) {
        std::string text;
        std::array<char, 4096> bytes{};
        for (ssize_t count = 0; (count = ::read(process.output(), bytes.data(), bytes.size())) > 0;) {
            text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return text;
    }
};

TEST_F(Statectl, Keeps_the_machine_awake) {
    start_and_run();
    auto const result = statectl({"ecu-alive", "request", "2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("ECU alive requested for \"2\" ("));
    machine->press("n");
    ASSERT_TRUE(sees(Kind::state_word, "postrun"));
    EXPECT_EQ(statectl({"ecu-alive", "release", "2"}).status, 0);
    EXPECT_TRUE(sees(Kind::state_word, "shuttingdown"));
    EXPECT_TRUE(ends_with(0));
}

/// `hold` with a command that ends once /tmp/gate is written to.
class Holding : public Statectl {
 protected:
    Holding() {
        configuration.merge_patch({{"ap_statemanager", {{"KnockOutTimer", 1'000'000}}}});
        ::mkfifo("/tmp/gate", 0600);
    }

    std::unique_ptr<Child_process> hold() {
        start_and_run();
        auto process = std::make_unique<Child_process>(
            std::vector<std::string>{VEHICLE_BUILD "/tools/ap_statectl", "hold", "ecu-alive", "2", "--", "sh", "-c",
                                     "echo $$; read -r line </tmp/gate; exit 7"},
            std::vector<std::string>{});
        std::string number;
        for (char byte = 0; byte != '\n' && ::read(process->output(), &byte, 1) == 1;) {
            number += byte;
        }
        command = std::stoi(number);
        return process;
    }
    static void open_gate() { std::ofstream("/tmp/gate") << "go" << std::endl; }

    bool sees_new_log(std::string const& text) {
        auto const position = machine->await(Kind::log, text, seen_);
        seen_ = position.value_or(seen_) + 1;
        return position.has_value();
    }
    bool is_requested() { return sees_new_log("State_manager::ecu_alive_request:  2"); }
    bool is_released() { return sees_new_log("State_manager::ecu_alive_release:  2"); }

    pid_t command{0};

 private:
    std::size_t seen_{0};
};

TEST_F(Holding, Keeps_the_machine_awake_until_its_command_ends_and_has_its_status) {
    auto const process = hold();
    EXPECT_TRUE(is_requested());
    machine->press("n");
    ASSERT_TRUE(sees(Kind::state_word, "postrun"));
    open_gate();
    EXPECT_EQ(process->wait(Player::k_patience), 7);
    EXPECT_TRUE(is_released());
    EXPECT_TRUE(sees(Kind::state_word, "shuttingdown"));
    EXPECT_TRUE(ends_with(0));
}

TEST_F(Holding, Releases_what_a_killed_command_held) {
    auto const process = hold();
    EXPECT_TRUE(is_requested());
    ::kill(command, SIGKILL);
    EXPECT_EQ(process->wait(Player::k_patience), 128 + SIGKILL);
    EXPECT_TRUE(is_released());
}

TEST_F(Holding, Outlives_ap_statectl_and_not_the_command) {
    auto const process = hold();
    EXPECT_TRUE(is_requested());
    process->signal(SIGKILL);
    process->wait(Player::k_patience);
    EXPECT_EQ(::kill(command, 0), 0);
    open_gate();
    EXPECT_TRUE(is_released());
}

TEST_F(Holding, Begins_no_command_that_nobody_watches) {
    start_and_run();
    Child_process process({VEHICLE_BUILD "/tools/ap_statectl", "hold", "ecu-alive", "2", "--", "echo", "started"},
                          std::vector<std::string>{});
    auto const main_thread = "/proc/" + std::to_string(process.pid()) + "/task/" + std::to_string(process.pid());
    pid_t guardian = 0;
    while (guardian == 0) {
        std::ifstream(main_thread + "/children") >> guardian;
    }
    process.signal(SIGSTOP);
    EXPECT_TRUE(is_requested());
    std::this_thread::sleep_for(std::chrono::milliseconds(500));  // so that the guardian has said that it holds
    ::kill(guardian, SIGSTOP);
    process.signal(SIGCONT);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    process.signal(SIGKILL);
    process.wait(Player::k_patience);
    ::kill(guardian, SIGCONT);
    EXPECT_TRUE(is_released());
    char byte = 0;
    EXPECT_EQ(::read(process.output(), &byte, 1), 0) << "the command has begun";
}

TEST_F(Holding, Releases_in_the_place_of_a_killed_guardian) {
    auto const process = hold();
    EXPECT_TRUE(is_requested());
    auto const main_thread = "/proc/" + std::to_string(process->pid()) + "/task/" + std::to_string(process->pid());
    std::ifstream children(main_thread + "/children");
    for (pid_t child = 0; children >> child;) {
        if (child != command) {
            ::kill(child, SIGKILL);
        }
    }
    open_gate();
    EXPECT_EQ(process->wait(Player::k_patience), 7);
    EXPECT_TRUE(is_released());
}

TEST_F(Holding, Asks_again_after_a_restart_of_the_daemon) {
    auto const process = hold();
    EXPECT_TRUE(is_requested());
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    start();
    EXPECT_TRUE(is_requested());
    process->signal(SIGTERM);  // which reaches the command
    EXPECT_EQ(process->wait(Player::k_patience), 128 + SIGTERM);
    EXPECT_TRUE(is_released());
}

TEST_F(Holding, Runs_no_command_when_the_instance_is_not_offered) {
    start_and_run();
    auto const result = run({"/bin/sh", "-c", "exec \"$@\" 2>&1", "-", VEHICLE_BUILD "/tools/ap_statectl", "hold",
                             "cwu", "nobody", "--wait", "1000", "--", "echo", "started"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "ap_statectl: \"nobody\" is not offered; offered: \"1\"\n");
}

TEST_F(Statectl, Holds_bits_and_gives_them_back) {
    start_and_run();
    EXPECT_EQ(statectl({"com-alive", "request", "1", "--bits", "02", "--cab", "12", "--ac", "9"}).status, 0);
    EXPECT_TRUE(sees(Kind::user_data, "80 00 01 02 10 00"));
    EXPECT_EQ(statectl({"cwu", "request", "1", "--ac", "3"}).status, 0);
    EXPECT_TRUE(sees(Kind::user_data, "c0 04 00 02 10 00"));
    EXPECT_EQ(statectl({"com-alive", "release", "1", "--cab", "12"}).status, 0);
    EXPECT_TRUE(sees(Kind::user_data, "c0 04 00 02 00 00"));
    EXPECT_EQ(statectl({"cwu", "release", "1"}).status, 0);
    EXPECT_TRUE(sees(Kind::user_data, "80 04 00 02 00 00"));
}

TEST_F(Statectl, Restarts_what_it_is_told) {
    start_and_run();
    EXPECT_EQ(statectl({"restart", "vm"}).status, 0);
    EXPECT_TRUE(sees(Kind::restart_word, "restartao"));
    EXPECT_EQ(statectl({"restart", "m3"}).status, 0);
    EXPECT_TRUE(sees(Kind::restart_word, "restartm3"));
    EXPECT_EQ(statectl({"restart", "6"}).status, 0);
    EXPECT_TRUE(logs("DSA received unknown RestartType !"));
}

TEST_F(Statectl, Says_when_an_instance_is_not_offered) {
    start_and_run();
    auto const result = statectl({"ecu-alive", "request", "nobody", "--wait", "50", "--json"});
    EXPECT_EQ(result.status, 1);
    auto const told = json::parse(result.output);
    EXPECT_EQ(told.at("ok"), false);
    EXPECT_EQ(told.at("instance"), "nobody");
    EXPECT_THAT(told.at("error").get<std::string>(), testing::StartsWith("\"nobody\" is not offered; "));
}

TEST_F(Statectl, Lists_what_is_offered_and_since_when) {
    start_and_run();
    auto const now = ::time(nullptr);
    auto const list = json::parse(statectl({"services", "--json"}).output);
    std::vector<std::string> offers;
    for (auto const& offer : list) {
        auto const interface_name = offer.at("interface").get<std::string>();
        offers.push_back(interface_name.substr(interface_name.rfind(':') + 1) + ' ' +
                         offer.at("instance").get<std::string>());
        std::tm since{};
        ::strptime(offer.at("since").get<std::string>().c_str(), "%Y-%m-%dT%H:%M:%S", &since);
        since.tm_isdst = -1;
        EXPECT_NEAR(static_cast<double>(::mktime(&since)), static_cast<double>(now), 30);
    }
    EXPECT_THAT(offers, testing::UnorderedElementsAre(
                            "StateManagementAliveInterface 1", "StateManagementAliveInterface 2",
                            "StateManagementComAliveInterface 1", "StateManagementCWUInterface 1",
                            "DSAInterface DSA_Interface", "NetworkStateInterface udpnm", "UserDataInterface udpnm"));
    EXPECT_THAT(statectl({"services"}).output, AllOf(HasSubstr("INTERFACE"), HasSubstr("DSA_Interface")));
}

TEST_F(Statectl, Lists_nothing_on_a_machine_without_services) {
    options.with_network = false;
    build();
    EXPECT_EQ(statectl({"services", "--wait", "100"}).output, "No service is offered.\n");
}

TEST_F(Statectl, Watches_the_network_until_it_is_ended) {
    start_and_run();
    Child_process watch({VEHICLE_BUILD "/tools/ap_statectl", "watch", "--json"}, {});
    Message_log seen(watch.output());
    auto const sees_line = [&](json const& members) {
        return seen.await([&](json const& line) { return has_members(line, members); }, Player::k_patience).has_value();
    };
    EXPECT_TRUE(sees_line({{"event", "network_state"}, {"bytes", "00 00 01 00 00 00"}, {"set", {"ECU alive"}}}));
    EXPECT_TRUE(sees_line({{"event", "user_data"}, {"bytes", "80 00 00 00 00 00"}, {"set", {"awake"}}}));
    machine->tell("application 1", {{"do", "request"}, {"what", "com_alive"}, {"bits", "01"}, {"ac", 2}});
    EXPECT_TRUE(sees_line({{"event", "network_state"}, {"set", {"CAB 0", "ECU alive"}}}));
    EXPECT_TRUE(sees_line({{"event", "user_data"}, {"set", {"awake", "AC 2", "CAB 0"}}}));
    machine->tell("node", {{"do", "withdraw"}});
    EXPECT_TRUE(sees_line({{"event", "withdrawn"}}));
    watch.signal(SIGHUP);  // its terminal goes away
    EXPECT_EQ(watch.wait(Player::k_patience), 0);
}

}  // namespace
}  // namespace bench::vehicle
