#ifndef ARA_LOG_DLT_SINK_H
#define ARA_LOG_DLT_SINK_H

#include "ara/log/log_engine.h"

#include <memory>
#include <string>

namespace ara::log {

/// Hands messages to the DLT daemon: one DLT message each, arguments as they were encoded, time stamps of the calls.
///
/// Without a daemon libdlt keeps messages (up to 500 kB) until one appears; when it has no room for more, the sink has
/// none. Each daemon that comes finds the contexts with the levels that they were made with, whatever its own default;
/// from then on a viewer may change them. A libdlt that can't be initialised is told on standard error once, and tried
/// again each second.
std::unique_ptr<Log_sink> make_dlt_sink(std::string const& application_id, std::string const& description);

/// Hands over what libdlt still keeps, for as long as the daemon takes it (see Exit_patience; libdlt's own wait is ten
/// seconds), and ends it. After the last message, and only when there was a sink.
void end_dlt();

}  // namespace ara::log

#endif
