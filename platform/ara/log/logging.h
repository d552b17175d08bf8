#ifndef ARA_LOG_LOGGING_H
#define ARA_LOG_LOGGING_H

#include "ara/log/common.h"
#include "ara/log/log_stream.h"
#include "ara/log/logger.h"

#include <cstdint>
#include <string>

namespace ara::log {

/// Starts logging for the process, once, before its first thread: names the application (id of up to four characters)
/// and starts the writer that hands messages to the log daemon. Messages logged earlier are kept and follow.
/// Without a log daemon messages are buffered. Throws `std::system_error` when the writer's thread can't be started.
void InitLogging(std::string const& application_id, std::string const& description, LogLevel level, LogMode mode,
                 std::string const& directory);

/// The logger of a further context (id of up to four characters), which logs up to a level of its own until a viewer
/// wants another. It lives until the process ends; asking again for the same id gives the same logger.
Logger& CreateLogger(std::string const& context_id, std::string const& description,
                     LogLevel level = LogLevel::kVerbose);

/// How many messages were lost so far, since the queue was full.
std::uint64_t LostMessages() noexcept;

// One message of the default context each. The message is everything streamed into the returned object and is logged
// when that object ends, at the end of the full expression.
LogStream LogFatal() noexcept;
LogStream LogError() noexcept;
LogStream LogWarn() noexcept;
LogStream LogInfo() noexcept;
LogStream LogDebug() noexcept;
LogStream LogVerbose() noexcept;

}  // namespace ara::log

#endif
