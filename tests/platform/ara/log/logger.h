#ifndef ARA_LOG_LOGGER_H
#define ARA_LOG_LOGGER_H

#include "ara/log/log_stream.h"

namespace ara::log {

/// Logs in one context.
class Logger {
 public:
    Logger(std::string_view context, LogLevel threshold) : context_(context), threshold_(threshold) {}

    LogStream LogFatal() noexcept { return stream(LogLevel::kFatal); }
    LogStream LogError() noexcept { return stream(LogLevel::kError); }
    LogStream LogWarn() noexcept { return stream(LogLevel::kWarn); }
    LogStream LogInfo() noexcept { return stream(LogLevel::kInfo); }
    LogStream LogDebug() noexcept { return stream(LogLevel::kDebug); }
    LogStream LogVerbose() noexcept { return stream(LogLevel::kVerbose); }

 private:
    LogStream stream(LogLevel level) noexcept { return {context_, level, level <= threshold_}; }

    std::string_view context_;
    LogLevel threshold_;
};

}  // namespace ara::log

#endif
