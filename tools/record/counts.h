#ifndef TOOLS_RECORD_COUNTS_H
#define TOOLS_RECORD_COUNTS_H

#include "tools/page/page_view.h"
#include "tools/trace/life.h"

#include <array>

namespace statectl::record {

// What the page does not tell as events, but counts: failed calls of network management, restarts that diagnostics ask
// for, and messages that the log lost.

/// Since the life's beginning: failed calls by `Network_call`, restarts by their type, those of them whose word could
/// not be written, lost messages.
using Counts = std::array<Number, status::k_network_calls + status::k_restart_types + 2>;

Counts counts_of(Snapshot const& page);

/// When the newest of them was counted.
Number counted_at(Snapshot const& page);

Number restarts_in(Counts const& counts);

/// What was counted more at that moment.
void tell_counts(trace::Life& cycle, double moment, Counts const& more);

}  // namespace statectl::record

#endif
