#include "ara/exec/application_client.h"

#include "ara/core/service_notification.h"
#include "ara/log/logging.h"

#include <system_error>

namespace ara::exec {

void ApplicationClient::ReportApplicationState(ApplicationState state) {
    try {
        if (state == ApplicationState::kRunning) {
            ara::core::report_ready();
        } else {
            ara::core::report_stopping();
        }
    } catch (std::system_error const& error) {
        ara::log::LogError() << "Application state not reported: " << error.what();
    }
}

}  // namespace ara::exec
