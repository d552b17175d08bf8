#ifndef ARA_LOG_LOGGING_H
#define ARA_LOG_LOGGING_H

#include "ara/log/logger.h"

#include <cstdint>
#include <string>

namespace ara::log {

enum class LogMode : std::uint8_t { kRemote = 1, kFile = 2, kConsole = 4 };

/// Messages are told from the start; nothing is left to do.
void InitLogging(std::string const& application_id, std::string const& description, LogLevel level, LogMode mode,
                 std::string const& directory);

/// Lives until the process ends; asking again for the same id gives the same logger.
Logger& CreateLogger(std::string const& context_id, std::string const& description,
                     LogLevel level = LogLevel::kVerbose);

/// None: a message is told where it is logged.
std::uint64_t LostMessages() noexcept;

// One message of the context "DFLT".
LogStream LogFatal() noexcept;
LogStream LogError() noexcept;
LogStream LogWarn() noexcept;
LogStream LogInfo() noexcept;
LogStream LogDebug() noexcept;
LogStream LogVerbose() noexcept;

}  // namespace ara::log

#endif
