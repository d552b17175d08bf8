#ifndef ARA_EXEC_APPLICATION_CLIENT_H
#define ARA_EXEC_APPLICATION_CLIENT_H

#include <cstdint>

namespace ara::exec {

/// What a process tells execution management about its own life.
enum class ApplicationState : std::uint8_t {
    kRunning = 0,
    kTerminating = 1,
};

/// Reports the calling process's own state to the service manager that started it: READY=1 or STOPPING=1 to the socket
/// that the environment names in NOTIFY_SOCKET. A process that no service manager started reports to nobody.
class ApplicationClient {
 public:
    /// Never fails towards the caller; a report that could not be sent is logged. READY=1 waits for nothing: when the
    /// service manager's queue is full it goes out with a later checkpoint of the supervision.
    void ReportApplicationState(ApplicationState state);
};

}  // namespace ara::exec

#endif
