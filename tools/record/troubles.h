#ifndef TOOLS_RECORD_TROUBLES_H
#define TOOLS_RECORD_TROUBLES_H

#include "tools/record/records.h"
#include "tools/trace/life.h"

namespace statectl::record {

/// Remarks what went wrong in a power cycle, and which commands came to nothing, as its events tell it one after the
/// other; those of something else are left alone.
void note_trouble(trace::Life& cycle, Recorded_event const& event);

/// Of the clock, by nanoseconds.
std::string setting_text(std::int64_t by);

}  // namespace statectl::record

#endif
