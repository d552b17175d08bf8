#ifndef STATUS_ROWS_H
#define STATUS_ROWS_H

#include "status/layout.h"

#include <cstdint>

namespace status {

// Pure functions of numbers that the driver knows: what stands behind a state's name.

/// The row of the table of state `from` by which a transition to `to` was due while `command` was the oldest one; 0
/// when there is none.
struct Row {
    std::uint64_t number;
    std::uint64_t command;  ///< that caused it; 0 when a condition did
};
Row row_of(std::uint64_t from, std::uint64_t to, std::uint64_t command, bool nm_usage);

/// What a state waits for.
Condition condition_of(std::uint64_t state);

/// What keeps a command waiting that the state was offered.
Blocked blocked_in(std::uint64_t state, std::uint64_t command, bool nm_usage);

}  // namespace status

#endif
