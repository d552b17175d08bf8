#include "state_notifier/state_notifier.h"

#include "ara/log/logging.h"
#include "state_notifier/client_report.h"
#include "status/driver_status.h"

#include <new>
#include <utility>

namespace ximo::ap::statemanager::state_notifier {

using client_state_notifier::Client_predicate;

namespace {

// The modes that clients are asked for.
constexpr char const* k_standby_mode = "kPrepSD";
constexpr char const* k_normal_mode = "kOn";

constexpr char const* k_dem = "diag::dem";
constexpr char const* k_dcm = "diag::dcm";

bool is_dem(std::string const& name) {
    return name == k_dem;
}
bool is_dcm(std::string const& name) {
    return name == k_dcm;
}
bool is_application(std::string const& name) {
    return !is_dem(name) && !is_dcm(name);
}

// The machine goes on without them, as it must.
void keep(Client_results& kept, Client_results const& results) {
    try {
        kept = results;
    } catch (std::bad_alloc const&) {
        kept.clear();
        ara::log::LogError() << "no memory for the results of the clients";
    }
}

}  // namespace

State_notifier::State_notifier(std::chrono::seconds application_timeout, std::chrono::seconds diagnostic_timeout,
                               Create_client_states const& create_client_states)
    : application_timeout_(application_timeout),
      diagnostic_timeout_(diagnostic_timeout),
      requested_state_(k_normal_mode),
      client_states_(create_client_states(k_normal_mode, log_out_of_turn)) {}

void State_notifier::request_standby() {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "Starting standby sequence";
    requested_state_ = k_standby_mode;
    sequence_status_ = 1;
    notify_dcm();
}

void State_notifier::request_resume() {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "Starting resume sequence";
    requested_state_ = k_normal_mode;
    if (sequence_status_ == 0) {
        sequence_status_ = 1;
        notify_dem();
    }
}

unsigned int State_notifier::check_request_status() {
    base::Lock_guard const lock(mutex_);
    if (sequence_status_ != 0) {
        check_application_request_status();
        check_dm_request_status();
    }
    return sequence_status_;
}

Client_results State_notifier::get_app_clients_status() const {
    base::Lock_guard const lock(mutex_);
    return apps_.results;
}

Client_results State_notifier::get_dem_clients_status() const {
    base::Lock_guard const lock(mutex_);
    return dem_.results;
}

Client_results State_notifier::get_dcm_clients_status() const {
    base::Lock_guard const lock(mutex_);
    return dcm_.results;
}

void State_notifier::notify_dcm() {
    ara::log::LogInfo() << "Requesting " << requested_state_ << " mode for DCM";
    status::group_asked(status::Group::dcm, requested_state_);
    request(dcm_, is_dcm, diagnostic_timeout_, &State_notifier::dcm_completed);
}

void State_notifier::notify_apps() {
    ara::log::LogInfo() << "Requesting " << requested_state_ << " mode for client applications";
    status::group_asked(status::Group::applications, requested_state_);
    request(apps_, is_application, application_timeout_, &State_notifier::apps_completed);
}

void State_notifier::notify_dem() {
    ara::log::LogInfo() << "Requesting " << requested_state_ << " mode for DEM";
    status::group_asked(status::Group::dem, requested_state_);
    request(dem_, is_dem, diagnostic_timeout_, &State_notifier::dem_completed);
}

// The server replaces any request before this one, so a step that one of those has left to be taken is void as well. A
// request that it can't be told of is over at once.
template <class Completed>
void State_notifier::request(Group& group, Client_predicate const& predicate, std::chrono::seconds timeout,
                             Completed completed) {
    dcm_.is_done = apps_.is_done = dem_.is_done = false;
    auto const number = ++request_number_;
    group.requested_state = requested_state_;
    bool const is_on_its_way = client_states_->request_state_change(
        requested_state_, predicate,
        [this, completed, number](Callback_status status, Client_results const& results) {
            base::Lock_guard const lock(mutex_);
            (this->*completed)(number, status, results);
        },
        timeout);
    if (!is_on_its_way) {
        (this->*completed)(number, Callback_status::timed_out, {});
    }
}

void State_notifier::dcm_completed(std::uint64_t request_number, Callback_status status,
                                   Client_results const& results) {
    if (keep_results(dcm_, request_number, "Received DCM client completion notification for ", status, results) &&
        dcm_.requested_state == k_normal_mode && requested_state_ == k_normal_mode) {
        sequence_status_ = 0;  // the resume ends here
    }
}

void State_notifier::apps_completed(std::uint64_t request_number, Callback_status status,
                                    Client_results const& results) {
    keep_results(apps_, request_number, "Received application client completion notification for ", status, results);
}

void State_notifier::dem_completed(std::uint64_t request_number, Callback_status status,
                                   Client_results const& results) {
    if (keep_results(dem_, request_number, "Received DEM client completion notification for ", status, results) &&
        dem_.requested_state == k_standby_mode && requested_state_ == k_standby_mode) {
        sequence_status_ = 0;  // the standby ends here; a resume asked for in between makes it turn back instead
    }
}

// False, and nothing else, for the completion of a request that a newer one has replaced.
bool State_notifier::keep_results(Group& group, std::uint64_t request_number, char const* text, Callback_status status,
                                  Client_results const& results) const {
    if (request_number != request_number_) {
        return false;
    }
    ara::log::LogInfo() << text << group.requested_state << ". Status: " << static_cast<std::uint32_t>(status);
    keep(group.results, results);
    log_clients(results);
    group.is_done = true;
    return true;
}

void State_notifier::check_application_request_status() {
    if (!std::exchange(apps_.is_done, false)) {
        return;
    }
    if (apps_.requested_state != requested_state_) {
        notify_apps();
    } else if (apps_.requested_state == k_standby_mode) {
        notify_dem();
    } else if (apps_.requested_state == k_normal_mode) {
        notify_dcm();
    } else {
        ara::log::LogVerbose() << "check_application_request_status wrong type";
    }
}

void State_notifier::check_dm_request_status() {
    if (std::exchange(dcm_.is_done, false)) {
        if (dcm_.requested_state != requested_state_) {
            notify_dcm();
        } else if (dcm_.requested_state == k_standby_mode) {
            notify_apps();
        }
    } else if (std::exchange(dem_.is_done, false)) {
        if (dem_.requested_state != requested_state_) {
            notify_dem();
        } else if (dem_.requested_state == k_normal_mode) {
            notify_apps();
        }
    } else {
        ara::log::LogVerbose() << "check_dm_request_status else";
    }
}

}  // namespace ximo::ap::statemanager::state_notifier
