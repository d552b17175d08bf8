#ifndef ARA_EXEC_APPLICATION_CLIENT_H
#define ARA_EXEC_APPLICATION_CLIENT_H

#include <cstdint>

namespace ara::exec {

enum class ApplicationState : std::uint8_t { kRunning = 0, kTerminating = 1 };

/// Tells that it is made, "running" and "terminating".
class ApplicationClient {
 public:
    ApplicationClient();
    void ReportApplicationState(ApplicationState state);
};

}  // namespace ara::exec

#endif
