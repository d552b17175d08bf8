#ifndef TESTS_UNIT_STATE_NOTIFIER_NOTIFIER_FIXTURE_H
#define TESTS_UNIT_STATE_NOTIFIER_NOTIFIER_FIXTURE_H

#include "state_notifier/state_notifier.h"
#include "support/fake_client_states.h"
#include "support/log_capture.h"

#include <memory>
#include <ostream>
#include <string>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::state_notifier {

/// A group of clients and the mode that it is asked for.
struct Step {
    std::string group;
    std::string mode;
};
inline bool operator==(Step const& left, Step const& right) {
    return left.group == right.group && left.mode == right.mode;
}
inline std::ostream& operator<<(std::ostream& out, Step const& step) {
    return out << step.group << " to " << step.mode;
}

/// A notifier over a server that a test plays, application time-out 7 s, diagnostic time-out 3 s.
class Notifier_test : public testing::Test {
 protected:
    test_support::Fake_client_states::Request& last() { return server->requests.back(); }

    /// The group that a request is for, by whom its predicate selects.
    static std::string group_of(test_support::Fake_client_states::Request const& request) {
        bool const dcm = request.predicate("diag::dcm");
        bool const dem = request.predicate("diag::dem");
        bool const application = request.predicate("radio");
        if (dcm && !dem && !application) {
            return "DCM";
        }
        if (!dcm && dem && !application) {
            return "DEM";
        }
        return !dcm && !dem && application ? "applications" : "a wrong mixture";
    }

    std::vector<Step> steps() const {
        std::vector<Step> all;
        for (auto const& request : server->requests) {
            all.push_back({group_of(request), request.state});
        }
        return all;
    }

    void complete(client_state_notifier::Callback_status status = client_state_notifier::Callback_status::succeeded,
                  client_state_notifier::Client_results const& results = {}) {
        last().completed(status, results);
    }

    /// The group that was asked last answers, and the state machine takes the next step.
    unsigned int complete_and_check() {
        complete();
        return sut.check_request_status();
    }

    test_support::Log_capture log;
    test_support::Fake_client_states* server{nullptr};  // owned by the notifier
    State_notifier sut{std::chrono::seconds(7), std::chrono::seconds(3),
                       [this](std::string const& current_state, client_state_notifier::Status_callback const& report) {
                           auto made = std::make_unique<test_support::Fake_client_states>();
                           made->default_state = current_state;
                           made->report = report;
                           server = made.get();
                           return made;
                       }};
};

inline Step const k_dcm_standby{"DCM", "kPrepSD"};
inline Step const k_apps_standby{"applications", "kPrepSD"};
inline Step const k_dem_standby{"DEM", "kPrepSD"};
inline Step const k_dcm_on{"DCM", "kOn"};
inline Step const k_apps_on{"applications", "kOn"};
inline Step const k_dem_on{"DEM", "kOn"};

}  // namespace ximo::ap::statemanager::state_notifier

#endif
