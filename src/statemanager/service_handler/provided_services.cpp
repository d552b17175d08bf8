// The driver's thread offers the restart service at the start, and withdraws all at the end. The application services
// are offered by the binding's thread that completes the search for network management; what it finds after the end is
// not offered any more.

#include "statemanager/service_handler/provided_services.h"

#include "ara/log/logging.h"
#include "statemanager/service_handler/infrastructure_failure.h"

#include <algorithm>
#include <utility>

namespace ximo::ap::statemanager {

namespace {

template <class Services, class Offer>
void offer_all(char const* announcement, Services const& services, Offer offer) {
    ara::log::LogInfo() << announcement;
    for (auto const& service : services) {
        succeeds([&] { offer(*service); });
    }
}

template <class Services>
Services without_absent(Services services) {
    services.erase(std::remove(services.begin(), services.end(), nullptr), services.end());
    return services;
}

}  // namespace

Provided_services::Provided_services(std::string const& restart_command_path,
                                     std::vector<std::string> const& ecu_alive_instances,
                                     services::Ecu_alive_interface_callback& callback, Com_alive_services com_alive,
                                     Cwu_services cwu)
    : restart_(restart_command_path),
      com_alive_(without_absent(std::move(com_alive))),
      cwu_(without_absent(std::move(cwu))) {
    for (auto const& instance : ecu_alive_instances) {
        ecu_alive_.push_back(std::make_unique<services::Ecu_alive_interface>(instance, &callback));
    }
}

bool Provided_services::offer_restart_service() {
    ara::log::LogInfo() << "Offering DSA service";
    return succeeds([this] { restart_.OfferService(); });
}

void Provided_services::offer_application_services() {
    base::Lock_guard const lock(mutex_);
    if (withdrawn_) {
        return;
    }
    auto const offer = [](auto& service) { service.offer(); };
    offer_all("Offering ECU alive services", ecu_alive_, [](auto& service) { service.OfferService(); });
    offer_all("Offering COM alive services", com_alive_, offer);
    offer_all("Offering CWU services", cwu_, offer);
}

void Provided_services::withdraw_restart_service() {
    restart_.StopOfferService();
}

void Provided_services::withdraw_application_services() {
    base::Lock_guard const lock(mutex_);
    withdrawn_ = true;
    for (auto const& service : ecu_alive_) {
        service->StopOfferService();
    }
    for (auto const& service : com_alive_) {
        service->stop_offer();
    }
    for (auto const& service : cwu_) {
        service->stop_offer();
    }
}

bool Provided_services::app_keeps_ecu_alive() const {
    return std::any_of(ecu_alive_.begin(), ecu_alive_.end(),
                       [](auto const& service) { return service->app_keeps_ecu_alive(); });
}

}  // namespace ximo::ap::statemanager
