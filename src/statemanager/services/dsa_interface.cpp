#include "statemanager/services/dsa_interface.h"

#include "ara/log/logging.h"
#include "statemanager/services/satisfied_future.h"
#include "status/restart_status.h"

#include <utility>

namespace ximo::ap::statemanager::services {

namespace {

constexpr char const* k_instance = "DSA_Interface";

}  // namespace

Dsa_interface::Dsa_interface(std::string restart_command_path)
    : Dsa_interface(std::make_unique<smw::Shared_memory_reboot>(std::move(restart_command_path))) {}

Dsa_interface::Dsa_interface(std::unique_ptr<smw::Shared_memory_reboot>&& writer)
    : DSAInterfaceSkeleton(ara::com::InstanceIdentifier(k_instance), ara::com::MethodCallProcessingMode::kEvent),
      writer_(std::move(writer)) {}

// No call comes in while the members go.
Dsa_interface::~Dsa_interface() {
    StopOfferService();
}

ximo::com::Future<void> Dsa_interface::RequestRestart(std::uint8_t RestartType) {
    status::restart_requested(RestartType);
    switch (RestartType) {
        case 1:
            restart_vm();
            break;
        case 2:
            ara::log::LogInfo() << "Received unused RequestDiagnosticRestart = 2 (no action) ";
            break;
        case 3:
            ara::log::LogInfo() << "Received unused RequestDiagnosticRestart = 3 (no action)";
            break;
        case 4:
            ara::log::LogInfo() << "Received unused RequestDiagnosticRestart = 4 (no action)";
            break;
        case 5:
            restart_m3();
            break;
        default:
            ara::log::LogWarn() << "DSA received unknown RestartType !";
    }
    return promise_get_future();
}

void Dsa_interface::restart_vm() {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "RequestDiagnosticRestart for own VM";
    writer_->restart_vm();
}

void Dsa_interface::restart_m3() {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "RequestDiagnosticRestart for M3";
    writer_->restart_m3();
}

ximo::com::Future<void> Dsa_interface::promise_get_future() {
    return satisfied_future();
}

}  // namespace ximo::ap::statemanager::services
