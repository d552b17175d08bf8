#include "bench/process/player.h"
#include "support/played_server.h"
#include "support/temporary_directory.h"

#include <string>

#include <gmock/gmock.h>

namespace bench {
namespace {

using nlohmann::json;
using test_support::Hello;
using test_support::Reply;

/// A client of a state manager that the test plays.
class Bench_client : public testing::Test {
 protected:
    Bench_client() { hello = peer.hello(); }

    json behave(json command) {
        command["do"] = "behave";
        return sut.command(std::move(command));
    }

    bool is_asked(std::uint32_t number, std::string const& state) {
        peer.request(number, state);
        return sut.await_event("request", {{"number", number}, {"state", state}}).is_object();
    }

    test_support::Temporary_directory directory;
    std::string const path{directory.file("socket")};
    test_support::Played_server server{path};
    Player sut{{BENCH_CLIENT, "radio", "kOn", path}};
    test_support::Played_peer peer{server.accept()};
    Hello hello;
};

TEST_F(Bench_client, Owes_only_the_newest_request) {
    behave({{"as", "silent"}});
    EXPECT_TRUE(is_asked(1, "kPrepSD"));
    EXPECT_TRUE(is_asked(2, "kOn"));
    behave({{"as", "well"}});
    EXPECT_EQ(peer.reply(), (Reply{2, "kOn", 0}));
}

TEST_F(Bench_client, Owes_nothing_on_a_lost_connection) {
    behave({{"as", "silent"}});
    EXPECT_TRUE(is_asked(1, "kPrepSD"));
    peer = test_support::Played_peer(utilities::Socket());
    sut.await_event("disconnected");
    EXPECT_EQ(sut.command({{"do", "list"}})["owes"], json());
    EXPECT_EQ(server.accept().hello().state, "kOn");
}

TEST_F(Bench_client, Refuses_commands_that_are_none) {
    EXPECT_EQ(behave({{"as", "kind"}})["error"], "\"as\" must be well, late, silent, failing or crashing");
    EXPECT_EQ(behave({{"as", "failing"}, {"status", 0}})["ok"], false) << "that is no failure";
    EXPECT_EQ(behave({{"as", "late"}, {"delay_ms", -1}})["ok"], false);
    EXPECT_EQ(behave({{"as", "late"}, {"delay", 1}})["ok"], false);
    EXPECT_EQ(sut.command({{"do", "list"}})["as"], "well");
}

}  // namespace
}  // namespace bench
