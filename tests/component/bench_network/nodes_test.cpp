#include "network_fixture.h"
#include "support/eventually.h"
#include "support/temporary_directory.h"

#include <cstdio>

namespace bench::network {
namespace {

using testing::HasSubstr;

/// Two nodes, 11 and 12.
class Nodes_test : public Network_fixture {
 protected:
    nlohmann::json await_state(Player& player, std::string const& state) {
        return player.await_event("nm_state", {{"to", state}});
    }

    Player first{words(11, {12})};
    Player second{words(12, {11})};
};

TEST_F(Nodes_test, The_other_node_keeps_the_bus_awake_until_it_falls_silent) {
    second.command({{"do", "request"}, {"bits", "80"}});
    first.await_event("network_state", {{"bits", "80 00 00 00 00 00"}});
    await_state(first, "ready sleep");
    second.command({{"do", "silence"}});
    // A message that was late for want of a processor may have been one too late for the first node before.
    EXPECT_TRUE(test_support::eventually([this] { return first.command({{"do", "list"}})["state"] == "bus sleep"; }));
    EXPECT_EQ(first.command({{"do", "list"}})["network_state"], "00 00 00 00 00 00");
    auto const position = first.position();
    second.command({{"do", "speak"}});
    first.await_event("network_state", {{"bits", "80 00 00 00 00 00"}}, position);
}

TEST_F(Nodes_test, A_message_that_says_nothing_new_is_told_once) {
    first.command({{"do", "request"}, {"bits", "01"}});
    await_state(first, "normal operation");
    auto const& messages = second.log().messages();
    auto const is_first_nodes = [](nlohmann::json const& message) {
        return has_members(message, {{"event", "message"}, {"node", 11}});
    };
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(), is_first_nodes), 1);
}

TEST_F(Nodes_test, What_is_no_message_is_told_and_changes_nothing) {
    second.command({{"do", "send"}, {"bytes", "0c 40 01"}});
    auto const event = first.await_event("malformed");
    EXPECT_EQ(event["from"], text(12));
    EXPECT_EQ(event["bytes"], "0c 40 01");
    EXPECT_EQ(first.command({{"do", "list"}})["state"], "bus sleep");
}

std::string output_of(std::string const& command) {
    std::string output;
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe)) {
        output += static_cast<char>(character);
    }
    return ::pclose(pipe) == 0 ? output : "failed: " + output;
}

TEST_F(Nodes_test, A_capture_is_read_by_a_protocol_analyser) {
    test_support::Temporary_directory const directory;
    auto const file = directory.file("nm.pcap");
    first.command({{"do", "capture"}, {"file", file}});
    first.command({{"do", "request"}, {"bits", "01"}});
    first.await_event("message", {{"direction", "received"}, {"node", 12}});
    first.command({{"do", "stop_capture"}});
    auto const seen = output_of("tcpdump -n -vv -r " + file + " 2>&1");
    EXPECT_THAT(seen, HasSubstr(text(11) + ".30500 > " + text(12) + ".30500: [udp sum ok] UDP, length 8"));
    EXPECT_THAT(seen, HasSubstr(text(12) + ".30500 > " + text(11) + ".30500: [udp sum ok] UDP, length 8"));
    EXPECT_THAT(seen, testing::Not(HasSubstr("bad")));
}

}  // namespace
}  // namespace bench::network
