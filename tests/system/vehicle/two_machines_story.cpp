#include "base/temporary_directory.h"
#include "story.h"
#include "tool.h"

#include <regex>

namespace bench::vehicle {
namespace {

constexpr char const* k_machine_address = "192.0.2.1";
constexpr char const* k_other_address = "192.0.2.2";

/// Another machine: a network of its own, and a cable from it to this one.
class Other_machine {
 public:
    Other_machine() : holder_({"unshare", "--net", "sh", "-c", "echo ready; cat"}, {}) {
        char byte = 0;
        while (::read(holder_.output(), &byte, 1) == 1 && byte != '\n') {
        }
        auto const pid = std::to_string(holder_.pid());
        command({"ip", "link", "add", "vmnet0", "type", "veth", "peer", "name", "vmnet1", "netns", pid});
        command({"ip", "address", "add", std::string(k_machine_address) + "/24", "dev", "vmnet0"});
        command({"ip", "link", "set", "vmnet0", "up"});
        command(inside({"ip", "address", "add", std::string(k_other_address) + "/24", "dev", "vmnet1"}));
        command(inside({"ip", "link", "set", "vmnet1", "up"}));
        command(inside({"ip", "link", "set", "lo", "up"}));
    }

    std::vector<std::string> inside(std::vector<std::string> words) const {
        std::vector<std::string> const enter{"nsenter", "--net=/proc/" + std::to_string(holder_.pid()) + "/ns/net"};
        words.insert(words.begin(), enter.begin(), enter.end());
        return words;
    }

 private:
    static void command(std::vector<std::string> const& words) {
        ASSERT_EQ(run(words).status, 0) << testing::PrintToString(words);
    }

    Child_process holder_;
};

class Two_machines : public Story {
 protected:
    // Before the cable goes: the engine can't end on an interface that is no longer there.
    void TearDown() override { finish(); }

    /// The shipped example for one of the machines, as an environment.
    std::string configured_for(std::string const& interface) const {
        std::ifstream file(VEHICLE_PROJECT "/deploy/dds/between_machines.xml");
        std::string const example{std::istreambuf_iterator<char>(file), {}};
        auto const path = scratch.file(interface + ".xml");
        std::ofstream(path) << std::regex_replace(example, std::regex("vmnet0"), interface);
        return "CYCLONEDDS_URI=file://" + path;
    }

    base::Temporary_directory const scratch;
    Other_machine const other;
};

TEST_F(Two_machines, Share_the_services_of_the_one) {
    settings()["StateManagerNMUsage"] = false;
    options.daemon_starter = {"/usr/bin/env", configured_for("vmnet0")};
    start_and_run();
    auto const call = other.inside({VEHICLE_BUILD "/tools/ap_statectl", "restart", "m3", "--wait", "8000"});
    auto const outcome = run(call, {configured_for("vmnet1")});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_TRUE(logs("RequestDiagnosticRestart for M3"));
}

// Without that configuration everything stays on the loopback, whatever cables there are.
TEST_F(Two_machines, Share_nothing_unless_they_are_told_to) {
    settings()["StateManagerNMUsage"] = false;
    start_and_run();
    auto const call = other.inside({VEHICLE_BUILD "/tools/ap_statectl", "restart", "m3", "--wait", "1500"});
    EXPECT_GT(run(call, {configured_for("vmnet1")}).status, 0);
    EXPECT_EQ(statectl({"restart", "m3"}).status, 0);
}

}  // namespace
}  // namespace bench::vehicle
