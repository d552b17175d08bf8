#ifndef ARA_LOG_TEXT_SINK_H
#define ARA_LOG_TEXT_SINK_H

#include "ara/log/log_engine.h"

#include <memory>
#include <string>

namespace ara::log {

/// Writes fatal messages, and no others, as lines on standard error, "STMG: Configuration is ill formatted, ...", so
/// that whoever started the process has the reason of its end without a log. A reader that does not read misses them.
std::unique_ptr<Log_sink> make_fatal_sink(std::string application_id);

/// Writes messages as lines of text: seconds since boot, level, context, arguments.
std::unique_ptr<Log_sink> make_console_sink();

/// The same into `<directory>/<application id>.log`; null when the file can't be opened. A file that has grown to
/// 16 MiB is renamed to `.log.1`, over an older one, and begun anew.
std::unique_ptr<Log_sink> make_file_sink(std::string const& directory, std::string const& application_id);

}  // namespace ara::log

#endif
