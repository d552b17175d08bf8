#ifndef TOOLS_TRACE_CAUSE_H
#define TOOLS_TRACE_CAUSE_H

#include <string>
#include <vector>

namespace statectl::trace {

/// What is known of the machine at a transition.
struct Situation {
    std::string command;  ///< the oldest one that waits; empty for none
    bool uses_network{true};
    std::vector<std::string> ecu;      ///< who keeps the ECU alive
    std::vector<std::string> network;  ///< who keeps communication alive
    std::vector<std::string> late;     ///< who has not answered in time
};

/// Why a transition was made, in words. `by_command` tells whether it was the command.
struct Cause {
    std::string text;
    bool by_command;
};

Cause cause_of(std::string const& from, std::string const& to, Situation const& situation);

/// A name as it stands in a sentence: in quotes unless it begins with a letter.
std::string name_text(std::string const& name);

/// "radio, navigation and 3 more"; at most `most` of them by name.
std::string enumeration(std::vector<std::string> const& names, std::size_t most = 3);

}  // namespace statectl::trace

#endif
