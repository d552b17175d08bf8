// Applications, the network, the hypervisor's keys, a reader of the status page and the end at the same time. In a
// build with a sanitizer the daemon ends with another status than 0 when the sanitizer has found something.

#include "bench/process/player.h"
#include "network_machine.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace bench::vehicle {
namespace {

class Everything : public Network_story {
 protected:
    Everything() {
        for (auto const* instance : {"1", "1", "2"}) {
            callers.push_back(std::make_unique<Player>(
                std::vector<std::string>{VEHICLE_BUILD "/bench/application/bench_application", instance}));
        }
    }
    ~Everything() override { stop_calling(); }

    /// Each caller repeats its calls on a thread of its own until `stop_calling`.
    void start_calling() {
        auto const repeat = [this](Player& caller, std::vector<nlohmann::json> commands) {
            threads.emplace_back([this, &caller, commands = std::move(commands)] {
                while (!ending) {
                    for (auto const& command : commands) {
                        answered += caller.command(command).value("ok", false) ? 1 : 0;
                    }
                }
            });
        };
        repeat(*callers[0], {{{"do", "request"}, {"what", "com_alive"}, {"bits", "06"}, {"ac", 1}},
                             {{"do", "release"}, {"what", "com_alive"}, {"bits", "06"}}});
        repeat(*callers[1], {{{"do", "request"}, {"what", "cwu"}, {"ac", 2}},
                             {{"do", "release"}, {"what", "cwu"}},
                             {{"do", "request"}, {"what", "ecu_alive"}},
                             {{"do", "release"}, {"what", "ecu_alive"}}});
        repeat(*callers[2], {{{"do", "request"}, {"what", "ecu_alive"}},
                             {{"do", "release"}, {"what", "ecu_alive"}},
                             {{"do", "restart"}, {"type", 2}}});
    }

    void stop_calling() {
        ending = true;
        for (auto& thread : threads) {
            thread.join();
        }
        threads.clear();
    }

    /// What was answered so far is there, and some more.
    bool more_is_answered() {
        int const before = answered;
        auto const end = std::chrono::steady_clock::now() + Machine::k_patience;
        while (answered < before + 30 && std::chrono::steady_clock::now() < end) {
            machine->watch(std::chrono::milliseconds(5));
        }
        return answered >= before + 30;
    }

    std::vector<std::unique_ptr<Player>> callers;
    std::vector<std::thread> threads;
    std::atomic<bool> ending{false};
    std::atomic<int> answered{0};
};

TEST_F(Everything, Happens_at_once_and_ends_in_order) {
    start_and_run();
    Child_process reader({"/bin/sh", "-c", "exec " VEHICLE_BUILD "/tools/ap_statectl status --watch --json >/tmp/read"},
                         {});
    reader.expect(EXIT_FAILURE);  // which is how it tells that the daemon has gone
    start_calling();
    for (int round = 0; round < 3; ++round) {
        machine->take_events();
        machine->tell("other node", {{"do", "request"}, {"bits", "40"}});
        ASSERT_TRUE(more_is_answered());
        machine->press("p");
        ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
        machine->tell("other node", {{"do", "release"}, {"bits", "40"}});
        ASSERT_TRUE(more_is_answered());
        machine->press("r");
        ASSERT_TRUE(sees(Kind::state_word, "running"));
    }
    tell_node({{"do", "withdraw"}});
    tell_node({{"do", "offer"}});
    ASSERT_TRUE(more_is_answered());

    machine->signal_daemon(SIGTERM);  // in the middle of calls

    EXPECT_TRUE(ends_with(0));
    stop_calling();
    EXPECT_EQ(reader.wait(std::chrono::seconds(20)), EXIT_FAILURE);
    auto page = nlohmann::json::object();
    std::ifstream file("/tmp/read");
    for (std::string line; std::getline(file, line);) {
        page = nlohmann::json::parse(line, nullptr, false);
        ASSERT_TRUE(page.is_object()) << line;
    }
    EXPECT_EQ(page.value("running", true), false) << page;
}

}  // namespace
}  // namespace bench::vehicle
