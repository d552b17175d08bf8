#ifndef TESTS_COMPONENT_NOTIFICATION_SEQUENCES_SEQUENCE_FIXTURE_H
#define TESTS_COMPONENT_NOTIFICATION_SEQUENCES_SEQUENCE_FIXTURE_H

#include "client_state_notifier/client_states_impl.h"
#include "played_clients.h"
#include "state_notifier/state_notifier.h"
#include "support/eventually.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace sequences {

using test_support::eventually;

using client_state_notifier::Client_results;
using client_state_notifier::Component_client_return_type;
using Clock = std::chrono::steady_clock;

constexpr char const* k_dcm = "diag::dcm";
constexpr char const* k_dem = "diag::dem";
constexpr char const* k_radio = "radio";  // an application

/// Which sequence.
enum class Way { standby, resume };

inline std::ostream& operator<<(std::ostream& out, Way way) {
    return out << (way == Way::standby ? "standby" : "resume");
}

inline std::string mode_of(Way way) {
    return way == Way::standby ? "kPrepSD" : "kOn";
}

/// The real notifier and the real server; the test is the state machine and plays the clients.
class Sequence_test : public testing::Test {
 protected:
    /// How long everybody may take for an answer.
    explicit Sequence_test(std::chrono::seconds time_out_of_all = std::chrono::seconds(10))
        : time_out(time_out_of_all) {}

    std::chrono::seconds const time_out;

    void connect(std::string const& name, Manner manner = Manner::obeys) {
        clients.add(path, name, manner);
        auto const connected = [&] {
            auto const list = server->get_connected_clients();
            return std::any_of(list.begin(), list.end(), [&](auto const& client) { return client.first == name; });
        };
        ASSERT_TRUE(eventually(connected)) << name;
    }
    void connect_all() {
        for (auto const* name : {k_dcm, k_radio, k_dem}) {
            connect(name);
        }
    }

    void begin(Way way) { way == Way::standby ? sut.request_standby() : sut.request_resume(); }

    /// Lets everybody work until no sequence runs.
    void finish() {
        EXPECT_TRUE(eventually([&] {
            clients.act();
            return sut.check_request_status() == 0;
        }));
    }

    /// A whole sequence, and how long it took.
    Clock::duration run(Way way) {
        auto const start = Clock::now();
        begin(way);
        finish();
        return Clock::now() - start;
    }

    /// The last answers of all groups.
    Client_results results() const {
        auto all = sut.get_app_clients_status();
        all.merge(sut.get_dem_clients_status());
        all.merge(sut.get_dcm_clients_status());
        return all;
    }

    test_support::Log_capture log;
    test_support::Temporary_directory files;
    std::string const path{files.file("notification.socket")};
    client_state_notifier::Client_states* server{nullptr};  // owned by the notifier
    ximo::ap::statemanager::state_notifier::State_notifier sut{
        time_out, time_out, [this](auto const& state, auto const& status_callback) {
            auto made = std::make_unique<client_state_notifier::Client_states_impl>(state, status_callback, path);
            server = made.get();
            return made;
        }};
    Played_clients clients;
};

/// The three clients in the order in which a sequence asks them, each for the sequence's mode.
inline std::vector<Asked> whole_sequence(Way way) {
    std::vector<Asked> asked;
    for (auto const* name : {k_dcm, k_radio, k_dem}) {
        asked.push_back({name, mode_of(way)});
    }
    if (way == Way::resume) {
        std::reverse(asked.begin(), asked.end());
    }
    return asked;
}

/// "dem" of "diag::dem": names of tests have no colons.
inline std::string last_word(std::string const& name) {
    return name.substr(name.rfind(':') + 1);
}

}  // namespace sequences

#endif
