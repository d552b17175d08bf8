// What the server tells its log and calls back, in one journal: the log comes first.

#include "client_state_notifier/notification_server.h"
#include "server_fixture.h"

#include <set>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace client_state_notifier {
namespace {

using testing::ElementsAre;

class Order : public Server_test {
 protected:
    Order() {
        sut.reset();
        sut.emplace(
            "kOn",
            [this](auto const& name, auto status, auto const& /*state*/) {
                note("report " + name + " " + std::to_string(static_cast<unsigned>(status)) + ", connected " +
                     std::to_string(sut->get_connected_clients().size()));
            },
            path);
    }
    ~Order() override { sut.reset(); }

    /// Asks the clients of a name, and waits for the end.
    void ask(std::string const& whom, std::chrono::seconds timeout) {
        std::promise<void> ended;
        sut->request_state_change(
            "kPrepSD",
            [this, whom](auto const& name) {
                note("select " + name);
                return name == whom;
            },
            [&](auto status, auto const& /*results*/) {
                note("completed " + std::to_string(static_cast<unsigned>(status)));
                ended.set_value();
            },
            timeout);
        ASSERT_EQ(ended.get_future().wait_for(20s), std::future_status::ready);
    }

    std::vector<std::string> journal() {
        note("");
        std::lock_guard<std::mutex> const lock(mutex);
        journal_.pop_back();
        return std::exchange(journal_, {});
    }

 private:
    void note(std::string const& what) {
        std::lock_guard<std::mutex> const lock(mutex);
        for (auto const& message : log.messages()) {
            journal_.push_back(ara::log::to_text(message.arguments));
        }
        log.clear();
        journal_.push_back(what);
    }

    std::vector<std::string> journal_;
};

TEST_F(Order, Of_a_name_that_is_connected_already) {
    auto const first = connect("radio");
    journal();
    auto const second = connect("radio");
    EXPECT_THAT(journal(),
                ElementsAre("client connected: name =  radio , current state =  kOn", "report radio 0, connected 1"));
}

TEST_F(Order, Of_a_request_to_nobody) {
    auto const radio = connect("radio");
    journal();
    ask("seat", 1h);
    EXPECT_THAT(journal(), ElementsAre("sending state change request to clients. new state =  kPrepSD", "select radio",
                                       "completed 0"));
}

TEST_F(Order, Of_a_request_that_is_answered) {
    auto radio = connect("radio");
    journal();
    std::thread client([&radio] { radio.obey(); });
    ask("radio", 1h);
    client.join();
    EXPECT_THAT(journal(), ElementsAre("sending state change request to clients. new state =  kPrepSD", "select radio",
                                       "calling callback after all clients responded in time", "completed 0"));
}

TEST_F(Order, Of_a_request_whose_time_is_over) {
    auto const radio = connect("radio");
    journal();
    ask("radio", 0s);
    EXPECT_THAT(journal(), ElementsAre("sending state change request to clients. new state =  kPrepSD", "select radio",
                                       "calling callback after some clients timed out", "completed 1"));
}

TEST_F(Order, Of_an_end_with_a_request_in_progress) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD", 1h);
    radio.receive();
    sut.reset();
    EXPECT_THROW(outcome.get(), std::future_error) << "its callback has gone without a call";
    EXPECT_TRUE(radio.is_closed_by_server());
}

std::set<int> open_sockets() {
    std::set<int> all;
    for (int number = 0; number < 256; ++number) {
        struct stat status {};
        if (::fstat(number, &status) == 0 && S_ISSOCK(status.st_mode)) {
            all.insert(number);
        }
    }
    return all;
}

TEST(Loop_of_the_server, Ends_with_the_word_for_its_end_and_with_no_other) {
    test_support::Temporary_directory const files;
    auto others = open_sockets();
    Request_slot requests;
    others.insert(requests.wake_up_end().get_fd());
    auto channel = open_sockets();
    for (int const other : others) {
        channel.erase(other);
    }
    ASSERT_EQ(channel.size(), 1U) << "the callers' end";
    utilities::Socket const caller(::dup(*channel.begin()));
    Client_register clients("kOn");
    Notification_server sut(files.file("socket"), nullptr, requests, clients);
    auto loop = std::async(std::launch::async, [&sut] { sut.run(); });
    for (auto const* const word : {"", "terminated", "Terminate", "state_change_request_added"}) {
        utilities::send_type_length_values(caller, {utilities::Type_length_value(word)});
    }
    std::promise<void> served;
    requests.put({"kOn", [](auto const&) { return false; }, [&](auto, auto const&) { served.set_value(); },
                  std::chrono::steady_clock::now() + 1h, 0});
    EXPECT_EQ(served.get_future().wait_for(10s), std::future_status::ready);

    utilities::send_type_length_values(caller, utilities::create_terminate_command());

    EXPECT_EQ(loop.wait_for(10s), std::future_status::ready);
    EXPECT_FALSE(requests.is_stopped());
    requests.stop();
}

}  // namespace
}  // namespace client_state_notifier
