#ifndef TESTS_SUPPORT_FAKE_CLIENT_STATES_H
#define TESTS_SUPPORT_FAKE_CLIENT_STATES_H

#include "client_state_notifier/client_states.h"

#include <string>
#include <vector>

namespace test_support {

/// A notification server without clients or a thread: it keeps what was requested until a test completes it.
class Fake_client_states : public client_state_notifier::Client_states {
 public:
    struct Request {
        std::string state;
        client_state_notifier::Client_predicate predicate;
        client_state_notifier::Completion_callback completed;
        std::chrono::seconds timeout;
    };

    std::string default_state;
    client_state_notifier::Status_callback report;
    std::vector<Request> requests;
    bool can_be_told{true};

    std::vector<std::pair<std::string, std::string>> get_connected_clients() const override { return {}; }
    void set_default_state(std::string const& state) override { default_state = state; }
    bool request_state_change(std::string const& state, client_state_notifier::Client_predicate const& predicate,
                              client_state_notifier::Completion_callback const& completed,
                              std::chrono::seconds timeout) override {
        requests.push_back({state, predicate, completed, timeout});
        return can_be_told;
    }
};

/// The one that was made last instead of a real server; it belongs to whoever had it made.
inline Fake_client_states* last_made_clients = nullptr;

}  // namespace test_support

#endif
