#include "statectl.h"
#include "support/played_server.h"
#include "support/temporary_directory.h"

#include <future>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using nlohmann::json;
using test_support::Hello;
using test_support::Reply;
using testing::ElementsAre;
using testing::HasSubstr;

// Times are told, and another one in each run.
std::string without_times(std::string const& output) {
    auto const text = std::regex_replace(output, std::regex("after [0-9]+ ms"), "after N ms");
    return std::regex_replace(text, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:.]{12}[+-][0-9]{4}  "), "T ");
}

/// ap_statectl client, which ends by itself after the requests that it was told.
class Client : public testing::Test {
 protected:
    void start(std::vector<std::string> const& more) {
        std::vector<std::string> words{"client", "--name", "me", "--socket", path};
        words.insert(words.end(), more.begin(), more.end());
        result = std::async(std::launch::async, [words] { return run_statectl(words); });
        peer.emplace(server.accept());
        hello = peer->hello();
    }

    test_support::Temporary_directory directory;
    std::string const path{directory.file("socket")};
    test_support::Played_server server{path};
    std::optional<test_support::Played_peer> peer;
    Hello hello;
    std::future<Result> result;
};

TEST_F(Client, Takes_part_and_tells_each_request) {
    start({"--requests", "2"});
    EXPECT_EQ(hello, (Hello{"component_client_v1", "me", "kOn"}));
    peer->request(1, "kPrepSD");
    EXPECT_EQ(peer->reply(), (Reply{1, "kPrepSD", 0}));
    peer->request(2, "kOn");
    EXPECT_EQ(peer->reply(), (Reply{2, "kOn", 0}));
    auto const ended = result.get();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(without_times(ended.output),
              "T connected as me, state kOn\n"
              "T request 1: kPrepSD\n"
              "T answer 1: succeeded, state kPrepSD, after N ms\n"
              "T request 2: kOn\n"
              "T answer 2: succeeded, state kOn, after N ms\n");
    EXPECT_EQ(ended.errors, "");
}

TEST_F(Client, Tells_the_same_in_JSON) {
    start({"--requests", "1", "--json"});
    peer->request(7, "kPrepSD");
    peer->reply();
    std::istringstream output(result.get().output);
    std::vector<json> events;
    for (std::string line; std::getline(output, line);) {
        events.push_back(json::parse(line));
        EXPECT_EQ(events.back().erase("time"), 1U);
    }
    EXPECT_EQ(events.back().erase("after_ms"), 1U);
    EXPECT_THAT(
        events,
        ElementsAre(json{{"event", "connected"}, {"name", "me"}, {"state", "kOn"}},
                    json{{"event", "request"}, {"number", 7}, {"state", "kPrepSD"}},
                    json{{"event", "answer"}, {"number", 7}, {"state", "kPrepSD"}, {"status", 0}, {"sent", true}}));
}

TEST_F(Client, Announces_the_state_that_it_is_told) {
    start({"--requests", "1", "--state", "kPrepSD"});
    EXPECT_EQ(hello.state, "kPrepSD");
    peer->request(0, "kOn");
    EXPECT_EQ(peer->reply(), (Reply{0, "kOn", 0}));
}

TEST_F(Client, Answers_with_the_status_that_it_is_told_and_stays_in_its_state) {
    start({"--requests", "1", "--status", "2"});
    peer->request(1, "kPrepSD");
    EXPECT_EQ(peer->reply(), (Reply{1, "kOn", 2}));
    EXPECT_THAT(result.get().output, HasSubstr("answer 1: invalid, state kOn"));
}

TEST_F(Client, Answers_after_the_time_that_it_is_told) {
    start({"--requests", "1", "--answer-after", "200", "--json"});
    auto const asked = std::chrono::steady_clock::now();
    peer->request(1, "kPrepSD");
    peer->reply();
    EXPECT_GE(std::chrono::steady_clock::now() - asked, std::chrono::milliseconds(200));
    auto const output = result.get().output;
    EXPECT_GE(json::parse(output.substr(output.rfind('{'))).at("after_ms"), 200) << output;
}

TEST_F(Client, Says_when_its_late_answer_is_for_nobody) {
    start({"--requests", "2", "--answer-after", "100"});
    peer->request(1, "kPrepSD");
    peer->await_read();
    peer->request(2, "kOn");
    EXPECT_EQ(peer->reply().number, 2U);
    EXPECT_THAT(without_times(result.get().output),
                HasSubstr("answer 1: succeeded, state kOn, after N ms (not sent: nobody waits for it any more)"));
}

TEST_F(Client, Is_silent_when_told) {
    start({"--requests", "1", "--silent"});
    peer->request(1, "kPrepSD");
    EXPECT_TRUE(peer->is_closed()) << "it ends without an answer";
    EXPECT_EQ(without_times(result.get().output), "T connected as me, state kOn\nT request 1: kPrepSD\n");
}

TEST_F(Client, Comes_back_and_says_so) {
    start({"--requests", "1"});
    peer.emplace([&] {
        peer.reset();
        return server.accept();
    }());
    peer->hello();
    peer->request(1, "kOn");
    peer->reply();
    EXPECT_EQ(without_times(result.get().output),
              "T connected as me, state kOn\n"
              "T connection lost; waiting for the state manager\n"
              "T connected as me, state kOn\n"
              "T request 1: kOn\n"
              "T answer 1: succeeded, state kOn, after N ms\n");
}

TEST_F(Client, Says_what_is_wrong_with_its_words) {
    auto const missing = run_statectl({"client"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_THAT(missing.errors, HasSubstr("--name is required"));
    auto const too_long = run_statectl({"client", "--name", "me", "--socket", std::string(200, 'x')});
    EXPECT_EQ(too_long.status, 1);
    EXPECT_THAT(too_long.errors, HasSubstr("ap_statectl: socket address is too big"));
    EXPECT_EQ(run_statectl({}).status, 2);
    auto const unknown = run_statectl({"dance"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.errors, "\"dance\" is no subcommand\nRun with --help for more information.\n");
    EXPECT_EQ(run_statectl({"client", "--name", "me", "--requests", "0"}).status, 2);
}

TEST_F(Client, Has_a_help_and_a_version) {
    EXPECT_EQ(run_statectl({"--help"}).status, 0);
    EXPECT_THAT(run_statectl({"client", "--help"}).output, HasSubstr("--answer-after"));
    EXPECT_EQ(run_statectl({"--version"}).output, "ap_statectl " STATECTL_VERSION "\n");
}

}  // namespace
}  // namespace statectl
