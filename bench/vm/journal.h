#ifndef BENCH_VM_JOURNAL_H
#define BENCH_VM_JOURNAL_H

#include "bench/json_lines/line_splitter.h"
#include "bench/vehicle/timeline.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bench::vm {

/// One entry of the machine's journal.
struct Entry {
    std::int64_t time;  ///< nanoseconds since the machine's start
    std::string unit;   ///< of whom the service manager speaks, or who speaks; may be empty
    std::string message;
    std::string job;  ///< "start done" when a job of the service manager has ended, else empty
};

/// Reads the journal as the machine sends it, one JSON object a line.
class Journal {
 public:
    /// The entries that these bytes complete.
    std::vector<Entry> add(std::string_view bytes);

 private:
    Line_splitter lines_;
};

/// What an entry means to somebody who watches the state manager; nothing when it is of no interest. The time is the
/// machine's.
std::optional<vehicle::Event> to_event(Entry const& entry);

}  // namespace bench::vm

#endif
