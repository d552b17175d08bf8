#ifndef TOOLS_RECORD_REQUESTS_H
#define TOOLS_RECORD_REQUESTS_H

#include "tools/record/records.h"
#include "tools/trace/life.h"

#include <string>
#include <vector>

namespace statectl::record {

// What clients were asked for in a power cycle, and how they fared, as its events tell it one after the other.

/// With the transition into Preparing or Resuming, after `close_sequence`.
void open_sequence(trace::Life& cycle, Number at, Number state);

/// With each transition; the sequence has come to its end if that leads into the state that it was for.
void close_sequence(trace::Life& cycle, Number at, Number state);

/// With the end of the cycle.
void close_group(trace::Life& cycle, Number at);

/// Who has not answered in time in the newest sequence.
std::vector<std::string> late_in(trace::Life const& cycle);

/// With each other event; those of something else are left alone.
void note_request(trace::Life& cycle, Recorded_event const& event);

}  // namespace statectl::record

#endif
