#include "network_fixture.h"

namespace bench::network {
namespace {

class Node_commands_test : public Network_fixture {
 protected:
    Player sut{words(11, {}, {"--id", "7", "--request-bytes", "2"})};
};

TEST_F(Node_commands_test, The_list_shows_the_node) {
    sut.command({{"do", "user_data"}, {"bytes", "80"}});
    sut.command({{"do", "request"}, {"bits", "05 01"}});
    auto const released = sut.command({{"do", "release"}, {"bits", "04"}});
    EXPECT_EQ(released["requests"], "01 01");
    sut.command({{"do", "silence"}});
    auto const list = sut.command({{"do", "list"}});
    EXPECT_EQ(list["node"], 7);
    EXPECT_EQ(list["state"], "repeat message");
    EXPECT_EQ(list["network_state"], "01 01");
    EXPECT_EQ(list["requests"], "01 01");
    EXPECT_EQ(list["user_data"], "80");
    EXPECT_EQ(list["silent"], true);
    EXPECT_EQ(list["nodes"], nlohmann::json::array());
}

TEST_F(Node_commands_test, The_list_shows_the_nodes_that_were_heard) {
    Nm_socket const other({address(12), 30500});
    other.send({address(11), 30500}, {12, 0x40, 0, 3, 0x80});
    sut.await_event("message", {{"node", 12}});
    nlohmann::json const expected{{"node", 12}, {"control", 64}, {"requests", "00 03"}, {"user_data", "80"}};
    EXPECT_EQ(sut.command({{"do", "list"}})["nodes"], nlohmann::json::array({expected}));
}

TEST_F(Node_commands_test, Wrong_commands_are_refused_and_change_nothing) {
    for (nlohmann::json const& wrong : {
             nlohmann::json{{"do", "request"}},
             {{"do", "request"}, {"bits", "x"}},
             {{"do", "request"}, {"bits", "01 01 01"}},
             {{"do", "request"}, {"bits", 1}},
             {{"do", "request"}, {"bits", "01"}, {"bit", "01"}},
             {{"do", "release"}, {"bits", "1"}},
             {{"do", "user_data"}, {"bytes", std::string(130, '0')}},
             {{"do", "silence"}, {"now", true}},
             {{"do", "repeat_message"}, {"x", 1}},
             {{"do", "capture"}, {"file", "/nowhere/x.pcap"}},
             {{"do", "list"}, {"all", true}},
         }) {
        EXPECT_EQ(sut.command(wrong)["ok"], false) << wrong;
    }
    auto const list = sut.command({{"do", "list"}});
    EXPECT_EQ(list["state"], "bus sleep");
    EXPECT_EQ(list["requests"], "00 00");
    EXPECT_EQ(list["user_data"], "");
    EXPECT_EQ(list["silent"], false);
}

}  // namespace
}  // namespace bench::network
