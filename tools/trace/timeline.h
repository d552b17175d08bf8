#ifndef TOOLS_TRACE_TIMELINE_H
#define TOOLS_TRACE_TIMELINE_H

#include "tools/trace/summary.h"

#include <string>

namespace statectl::trace {

/// A text as it may stand in a page.
std::string escaped(std::string const& text);

/// A power cycle as a picture (SVG): its states as a bar, below it what applications held, and a frame around the
/// groups of clients in which somebody did not answer in time.
std::string timeline(Cycle const& cycle);

/// What the colours mean.
std::string legend();

}  // namespace statectl::trace

#endif
