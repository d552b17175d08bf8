#ifndef TESTS_COMPONENT_CLIENT_STATE_NOTIFIER_SERVER_FIXTURE_H
#define TESTS_COMPONENT_CLIENT_STATE_NOTIFIER_SERVER_FIXTURE_H

#include "client_state_notifier/client_states_impl.h"
#include "support/eventually.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"
#include "support/test_client.h"

#include <algorithm>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace client_state_notifier {

using namespace std::chrono_literals;  // NOLINT(google-build-using-namespace): of its literals

/// How a request ended.
struct Outcome {
    Callback_status status;
    Client_results results;
};

using test_support::eventually;

/// Holds the server's thread in a predicate as long as it lives. What the thread uses belongs to it as well.
class Busy_server {
 public:
    explicit Busy_server(Client_states& server) {
        auto held = std::make_shared<std::promise<void>>();
        server.request_state_change(
            "kPrepSD",
            [held, end = end_.get_future().share()](auto const& /*name*/) {
                held->set_value();
                end.wait();
                return false;
            },
            [](auto, auto const&) {}, 5s);
        held->get_future().wait();
    }
    ~Busy_server() { end_.set_value(); }
    Busy_server(Busy_server const&) = delete;
    Busy_server& operator=(Busy_server const&) = delete;

 private:
    std::promise<void> end_;
};

/// The time limit in ms with which the server's thread waits, or waited last; -1 for none.
long last_time_limit();

/// A real server on a socket in a directory of the test's own.
class Server_test : public testing::Test {
 protected:
    struct Report {
        std::string name;
        Client_status status;
        std::string state;
    };

    test_support::Test_client connect(std::string const& name, std::string const& state = "kOn") {
        auto const before = sut->get_connected_clients().size();
        test_support::Test_client client(path, name, state);
        EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() > before; }));
        return client;
    }

    std::future<Outcome> request(
        std::string const& state, std::chrono::seconds timeout = 5s,
        Client_predicate const& predicate = [](auto const& /*name*/) { return true; }) {
        auto promise = std::make_shared<std::promise<Outcome>>();
        sut->request_state_change(
            state, predicate,
            [promise](Callback_status status, Client_results const& results) {
                promise->set_value({status, results});
            },
            timeout);
        return promise->get_future();
    }

    /// The outcome, or a failure of the test when there is none within a few seconds.
    static Outcome outcome_of(std::future<Outcome>& future) {
        if (future.wait_for(10s) != std::future_status::ready) {
            ADD_FAILURE() << "the request has not ended";
            return {Callback_status{99}, {}};
        }
        return future.get();
    }
    static Outcome outcome_of(std::future<Outcome>&& future) { return outcome_of(future); }

    std::vector<Report> reports() {
        std::lock_guard<std::mutex> const lock(mutex);
        return reported;
    }

    bool has_logged(test_support::Log_message const& message) {
        return eventually([&] {
            auto const messages = log.messages();
            return std::find(messages.begin(), messages.end(), message) != messages.end();
        });
    }

    static test_support::Log_message info(char const* text, std::string const& argument) {
        return test_support::logged_in("SNCC", ara::log::LogLevel::kInfo, text, argument);
    }

    test_support::Log_capture log;
    test_support::Temporary_directory files;
    std::string path{files.file("run/notification.socket")};
    std::mutex mutex;
    std::vector<Report> reported;
    std::optional<Client_states_impl> sut{std::in_place, "kOn",
                                          [this](auto const& name, auto status, auto const& state) {
                                              std::lock_guard<std::mutex> const lock(mutex);
                                              reported.push_back({name, status, state});
                                          },
                                          path};
};

}  // namespace client_state_notifier

#endif
