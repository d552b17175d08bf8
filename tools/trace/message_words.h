#ifndef TOOLS_TRACE_MESSAGE_WORDS_H
#define TOOLS_TRACE_MESSAGE_WORDS_H

#include "tools/dlt/reader.h"

#include <cstddef>
#include <string>

namespace statectl::trace {

/// Whether it is a log message of the state manager.
bool is_of_state_manager(dlt::Message const& message);

/// The argument at that place of a message; empty where it has none.
std::string const& argument(dlt::Message const& message, std::size_t index);

/// Whether the first argument is that text, by which the daemon's messages are known.
bool says(dlt::Message const& message, char const* text);

}  // namespace statectl::trace

#endif
