#ifndef SIMULATION_REPORT_H
#define SIMULATION_REPORT_H

#include "simulation/play.h"

#include <string>

namespace simulation {

/// "5.100 s": milliseconds, and what is below only where there is something.
std::string seconds(Time time);

/// A text with blanks before it.
std::string padded(std::string const& text, std::size_t width);

/// The timeline and the verdicts, a line each.
std::string text_of(Outcome const& outcome);

/// One entry, a line without its time.
std::string text_of(Entry const& entry);

/// The same as one JSON document.
std::string json_of(Outcome const& outcome);

}  // namespace simulation

#endif
