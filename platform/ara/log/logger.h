#ifndef ARA_LOG_LOGGER_H
#define ARA_LOG_LOGGER_H

#include "ara/log/log_stream.h"

namespace ara::log {

/// Logs in one context. Loggers are made by CreateLogger and never die; any thread and any signal handler may use one.
class Logger {
 public:
    LogStream LogFatal() noexcept;
    LogStream LogError() noexcept;
    LogStream LogWarn() noexcept;
    LogStream LogInfo() noexcept;
    LogStream LogDebug() noexcept;
    LogStream LogVerbose() noexcept;
};

}  // namespace ara::log

#endif
