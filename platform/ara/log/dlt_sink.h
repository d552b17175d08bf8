#ifndef ARA_LOG_DLT_SINK_H
#define ARA_LOG_DLT_SINK_H

#include "ara/log/log_engine.h"

#include <chrono>
#include <memory>
#include <string>

namespace ara::log {

/// Hands messages to the DLT daemon: one DLT message each, arguments as they were encoded, time stamps of the calls.
/// Without a daemon libdlt keeps messages (up to 500 kB) until one appears.
std::unique_ptr<Log_sink> make_dlt_sink(std::string const& application_id, std::string const& description,
                                        LogLevel level);

/// How long the end of the process waits for a DLT daemon that does not take what libdlt still keeps for it; libdlt's
/// own wait is ten seconds.
inline constexpr std::chrono::milliseconds k_exit_time_limit{300};

/// Hands over what libdlt still keeps, within `k_exit_time_limit`, and ends it. After the last message, and only when
/// there was a sink.
void end_dlt();

}  // namespace ara::log

#endif
