#ifndef STATUS_RESTART_STATUS_H
#define STATUS_RESTART_STATUS_H

#include <cstdint>

/// What happens where diagnostics ask for a restart: on threads of the communication binding, several at once. See
/// page_writer.h.
namespace status {

/// A restart of this type was asked for.
void restart_requested(std::uint64_t type);

/// Its word could not be written.
void restart_failed();

}  // namespace status

#endif
