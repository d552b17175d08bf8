#ifndef SIMULATION_TRACE_WORDS_H
#define SIMULATION_TRACE_WORDS_H

#include "tools/dlt/reader.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace simulation {

/// Whose lines they are. One thread writes them, or several under one mutex; but `ecu`, which threads write before they
/// wait for that mutex, and `ecu_release`, which follows from one of these when it has it.
enum class Family { driver, network, requests, ecu, ecu_release, restart, server, signal, none };

/// That of the line that begins so.
Family family_of(std::string_view text);

/// Whether a message is a step: a line in which the daemon tells what it does.
bool carries_step(dlt::Message const& message);

/// One of its arguments, empty where it has fewer.
std::string argument(dlt::Message const& message, std::size_t place);

/// Whether its text begins so.
bool says(dlt::Message const& message, char const* begin);

/// Whether two lines are the same but for blanks, which log viewers put between two arguments.
bool is_same_line(std::string const& left, std::string const& right);

/// The driver begins to wait, and its wait is over.
bool begins_wait(dlt::Message const& message);
bool ends_wait(dlt::Message const& message);

/// Network management is found.
bool ends_search(dlt::Message const& message);

/// The last that a daemon says which ends orderly.
bool is_goodbye(dlt::Message const& message);

/// What came to the daemon from outside: from the network, an application, a client or the service manager.
bool is_input(dlt::Message const& message);

/// Whether it warns of something in the neighbours' manners that a trace does not tell.
bool is_unexplained_warning(dlt::Message const& message);

}  // namespace simulation

#endif
