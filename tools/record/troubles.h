#ifndef TOOLS_RECORD_TROUBLES_H
#define TOOLS_RECORD_TROUBLES_H

#include "tools/record/records.h"
#include "tools/trace/life.h"

#include <string>
#include <vector>

namespace statectl::record {

/// Adds a remark of that moment, in seconds of the life, to a cycle's; a cycle keeps its first 1,000 of a kind.
void remark(std::vector<trace::Remark>& remarks, double moment, std::string const& text);

/// Remarks what went wrong in a power cycle, and which commands came to nothing, as its events tell it one after the
/// other; those of something else are left alone.
void note_trouble(trace::Life& cycle, Recorded_event const& event);

/// Of the clock, by nanoseconds.
std::string setting_text(std::int64_t by);

}  // namespace statectl::record

#endif
