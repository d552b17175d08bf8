#ifndef ARA_LOG_DLT_SINK_H
#define ARA_LOG_DLT_SINK_H

#include "ara/log/log_engine.h"

#include <memory>
#include <string>

namespace ara::log {

/// Hands messages to the DLT daemon: one DLT message each, arguments as they were encoded, time stamps of the calls.
/// Without a daemon libdlt keeps messages (up to 500 kB) until one appears.
std::unique_ptr<Log_sink> make_dlt_sink(std::string const& application_id, std::string const& description,
                                        LogLevel level);

/// Ends libdlt without its wait for a daemon that does not answer. After the last message.
void end_dlt();

}  // namespace ara::log

#endif
