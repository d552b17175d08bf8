#include "client_state_notifier/client_register.h"

#include <gmock/gmock.h>

namespace client_state_notifier {
namespace {

TEST(Client_register_test, Knows_what_each_client_was_asked_for_last) {
    Client_register sut("kOn");
    std::vector<utilities::Socket> clients;
    std::vector<int> connections;
    for (auto const* name : {"radio", "seat", "door"}) {
        auto [server, client] = utilities::socket_pair();
        connections.push_back(server.get_fd());
        clients.push_back(std::move(client));
        sut.add(std::move(server), name, {});
    }
    auto const asked = [&] {
        std::vector<std::string> states;
        for (int const connection : connections) {
            states.push_back(sut.requested_state_of(connection));
        }
        return states;
    };
    EXPECT_THAT(asked(), testing::ElementsAre("", "", ""));

    sut.send_request(connections[1], "kOn");
    EXPECT_THAT(asked(), testing::ElementsAre("", "kOn", ""));

    sut.send_next_request({connections[0], connections[1]}, "kPrepSD");
    EXPECT_THAT(asked(), testing::ElementsAre("kPrepSD", "kPrepSD", ""));

    clients[0] = {};  // who has gone without a word is asked all the same
    sut.send_next_request({connections[0]}, "kOn");
    EXPECT_THAT(asked(), testing::ElementsAre("kOn", "kPrepSD", ""));
}

}  // namespace
}  // namespace client_state_notifier
