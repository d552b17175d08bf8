#ifndef ARA_LOG_LOGGER_H
#define ARA_LOG_LOGGER_H

#include "ara/log/log_context.h"
#include "ara/log/log_stream.h"

#include <string>

namespace ara::log {

/// Logs in one context. Loggers are made by CreateLogger and never die; any thread and any signal handler may use one.
class Logger {
 public:
    Logger(std::string id, std::string description, LogLevel level)
        : context_(std::move(id), std::move(description), level) {}

    LogStream LogFatal() noexcept { return {context_, LogLevel::kFatal}; }
    LogStream LogError() noexcept { return {context_, LogLevel::kError}; }
    LogStream LogWarn() noexcept { return {context_, LogLevel::kWarn}; }
    LogStream LogInfo() noexcept { return {context_, LogLevel::kInfo}; }
    LogStream LogDebug() noexcept { return {context_, LogLevel::kDebug}; }
    LogStream LogVerbose() noexcept { return {context_, LogLevel::kVerbose}; }

    Log_context& context() noexcept { return context_; }

 private:
    Log_context context_;
};

}  // namespace ara::log

#endif
