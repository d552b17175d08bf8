#ifndef STATE_NOTIFIER_STATE_NOTIFIER_H
#define STATE_NOTIFIER_STATE_NOTIFIER_H

#include "base/mutex.h"
#include "client_state_notifier/client_states.h"
#include "state_notifier/state_notifier_interface.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ximo::ap::statemanager::state_notifier {

using client_state_notifier::Callback_status;
using client_state_notifier::Client_results;

/// Makes the server with the state that clients are compared with, and the callback for what is remarkable about them.
using Create_client_states = std::function<std::unique_ptr<client_state_notifier::Client_states>(
    std::string const& current_state, client_state_notifier::Status_callback const& status_callback)>;

/// Tells three groups of clients to prepare for shutdown or to operate normally, one group after the other: to stand
/// by, diagnostic communication (DCM, the client "diag::dcm"), then the applications, then diagnostic events (DEM, the
/// client "diag::dem"); to resume, in the opposite order. Clients that fail or time out hold up nothing.
///
/// A resume in the middle of a standby turns the running sequence back at its next step; a standby in the middle of
/// anything starts from the first step.
///
/// A state asks for a sequence when it is entered, and then for its status in each cycle, which is what takes each next
/// step: all of that on the driver's thread. The server's thread reports what clients answered.
class State_notifier : public State_notifier_interface {
 public:
    /// How long the applications may take for an answer, and how long DCM and DEM may.
    State_notifier(std::chrono::seconds application_timeout, std::chrono::seconds diagnostic_timeout,
                   Create_client_states const& create_client_states = client_state_notifier::create_client_states);

    void request_standby() override;
    void request_resume() override;
    unsigned int check_request_status() override;

    /// What the clients of a group answered last; empty before.
    Client_results get_app_clients_status() const;
    Client_results get_dem_clients_status() const;
    Client_results get_dcm_clients_status() const;

 private:
    struct Group {
        std::string requested_state;  ///< last requested from this group
        bool is_done{false};          ///< completed, and the next step not taken yet
        Client_results results;
    };

    void notify_dcm() REQUIRES(mutex_);
    void notify_apps() REQUIRES(mutex_);
    void notify_dem() REQUIRES(mutex_);
    template <class Completed>
    void request(Group& group, client_state_notifier::Client_predicate const& predicate, std::chrono::seconds timeout,
                 Completed completed) REQUIRES(mutex_);

    void dcm_completed(std::uint64_t request_number, Callback_status status, Client_results const& results)
        REQUIRES(mutex_);
    void apps_completed(std::uint64_t request_number, Callback_status status, Client_results const& results)
        REQUIRES(mutex_);
    void dem_completed(std::uint64_t request_number, Callback_status status, Client_results const& results)
        REQUIRES(mutex_);
    bool keep_results(Group& group, std::uint64_t request_number, char const* text, Callback_status status,
                      Client_results const& results) const REQUIRES(mutex_);

    void check_application_request_status() REQUIRES(mutex_);
    void check_dm_request_status() REQUIRES(mutex_);

    std::chrono::seconds const application_timeout_;
    std::chrono::seconds const diagnostic_timeout_;

    mutable base::Mutex mutex_;
    std::string requested_state_ GUARDED_BY(mutex_);
    unsigned int sequence_status_ GUARDED_BY(mutex_){0};  ///< 1 while a sequence runs
    std::uint64_t request_number_ GUARDED_BY(mutex_){0};  ///< of the last request
    Group dcm_ GUARDED_BY(mutex_);
    Group apps_ GUARDED_BY(mutex_);
    Group dem_ GUARDED_BY(mutex_);

    std::unique_ptr<client_state_notifier::Client_states> client_states_;  ///< last: its thread uses the rest
};

}  // namespace ximo::ap::statemanager::state_notifier

#endif
