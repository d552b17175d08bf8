#include "statemanager/service_handler/nm_interface.h"

#include "ara/log/logging.h"
#include "statemanager/service_handler/infrastructure_failure.h"
#include "status/network_status.h"

#include <utility>

namespace ximo::ap::statemanager {

namespace {

using status::Network_call;

template <class Call>
void make(Network_call which, Call const& call) {
    if (!succeeds(call)) {
        status::call_failed(which);
    }
}

}  // namespace

/// What one search calls when both services are there: once, however often and from however many threads at once it is
/// asked to; again when a call has ended by an exception.
class Nm_interface::Announcement {
 public:
    explicit Announcement(std::function<void()> on_services_found) : on_services_found_(std::move(on_services_found)) {}

    void make() {
        if (made_.exchange(true)) {
            return;
        }
        try {
            on_services_found_();
        } catch (...) {
            made_ = false;
            throw;
        }
    }

 private:
    std::function<void()> const on_services_found_;
    std::atomic<bool> made_{false};
};

// The receive handler may hold the proxy itself, so dropping the proxy would not wait for it.
Nm_interface::~Nm_interface() {
    stop_find_network_state_service();
    stop_find_user_data_service();
    if (auto const proxy = network_state_.proxy()) {
        proxy->NetworkState.Notify.Unsubscribe();
    }
    replace_network_state_updated_func(nullptr);
    user_data_.hold(nullptr);
    network_state_.hold(nullptr);
}

// A report that can't be acted on, since there can be no proxy just then, is made again by the binding.
void Nm_interface::start_find_services(std::function<void()> const& on_services_found) {
    auto const announcement = std::make_shared<Announcement>(on_services_found);
    network_state_.start([this, announcement](ara::com::ServiceHandleContainer const& handles) {
        network_state_reported(handles, *announcement);
    });
    user_data_.start([this, announcement](ara::com::ServiceHandleContainer const& handles) {
        user_data_reported(handles, *announcement);
    });
}

void Nm_interface::network_state_reported(ara::com::ServiceHandleContainer const& handles, Announcement& announcement) {
    if (handles.empty()) {
        ara::log::LogWarn() << "Could not find NetworkState service";
        return;
    }
    ara::log::LogInfo() << "Found NetworkState service";
    auto const proxy = std::make_shared<Network_state_proxy>(handles.front());
    network_state_.hold(proxy);
    proxy->NetworkState.Notify.SetReceiveHandler([this] { network_state_field_updated(); });
    proxy->NetworkState.Notify.Subscribe(1);
    network_state_found_ = true;
    announce_when_complete(announcement);
    stop_find_network_state_service();
}

void Nm_interface::user_data_reported(ara::com::ServiceHandleContainer const& handles, Announcement& announcement) {
    if (handles.empty()) {
        ara::log::LogWarn() << "Could not find UserData service";
        return;
    }
    ara::log::LogInfo() << "Found UserData service";
    user_data_.hold(std::make_shared<User_data_proxy>(handles.front()));
    user_data_found_ = true;
    announce_when_complete(announcement);
    stop_find_user_data_service();
}

void Nm_interface::announce_when_complete(Announcement& announcement) {
    if (network_state_found_ && user_data_found_) {
        announcement.make();
    }
}

void Nm_interface::stop_find_network_state_service() {
    network_state_.stop();
}

void Nm_interface::stop_find_user_data_service() {
    user_data_.stop();
}

void Nm_interface::network_state_field_updated() {
    auto const proxy = network_state_.proxy();
    if (!proxy) {
        return;
    }
    proxy->NetworkState.Notify.Update();
    auto const samples = proxy->NetworkState.Notify.GetCachedSamples();
    if (!samples.empty()) {
        network_state_updated_func()(std::vector<std::uint8_t>(*samples.back()));
    }
}

void Nm_interface::set_network_state_updated_func(Network_state_func const& func) {
    replace_network_state_updated_func(func);
}

void Nm_interface::replace_network_state_updated_func(Network_state_func func) {
    base::Lock_guard const lock(mutex_);
    network_state_updated_func_.swap(func);
}

Nm_interface::Network_state_func Nm_interface::network_state_updated_func() const {
    base::Lock_guard const lock(mutex_);
    return network_state_updated_func_;
}

void Nm_interface::request_network(std::vector<std::uint8_t> const& bits) {
    if (auto const proxy = network_state_.proxy()) {
        make(Network_call::request_network, [&] { proxy->RequestNetwork(bits).get(); });
    }
}

void Nm_interface::release_network(std::vector<std::uint8_t> const& bits) {
    if (auto const proxy = network_state_.proxy()) {
        make(Network_call::release_network, [&] { proxy->ReleaseNetwork(bits).get(); });
    }
}

void Nm_interface::set_user_data(std::vector<std::uint8_t> const& data) {
    if (auto const proxy = user_data_.proxy()) {
        make(Network_call::set_user_data, [&] { proxy->SetUserData(data).get(); });
    }
}

}  // namespace ximo::ap::statemanager
