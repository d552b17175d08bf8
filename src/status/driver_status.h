#ifndef STATUS_DRIVER_STATUS_H
#define STATUS_DRIVER_STATUS_H

#include "status/layout.h"

#include <cstdint>
#include <string_view>

/// What happens on the driver's thread. See page_writer.h.
namespace status {

/// A cycle begins, with these flags.
void beat(bool prepare_sd, bool forced_shutdown);

/// How many messages the log has lost so far.
void log_lost(std::uint64_t messages);

/// One state is left for another one; `command` is the oldest.
void transition(std::uint64_t from, std::uint64_t to, std::uint64_t command);

/// Cycles that Post Run stays at most.
void knockout_left(std::uint64_t cycles);

/// The loop was left, for whatever reason.
void loop_ended();

/// A key was queued as a command, or is the same as the one before and was dropped.
void key_taken(std::uint64_t command);
void key_dropped(std::uint64_t command);

/// A power key throws away what waits.
void queue_cleared();

/// The oldest command is done with, after a transition, whether or not it was the cause.
void command_consumed();

/// How many input devices are listened to, from the start and after one has failed.
void devices_opened(std::uint64_t count);
void device_lost(std::uint64_t left);

/// The hypervisor was told a state.
void state_word(std::string_view word, Word_fate fate);

/// Execution management was asked for a machine state.
void machine_state(std::string_view state, bool succeeded);

/// Health management is told no more that the daemon is alive: a report failed.
void supervision_stopped();

/// The states hold the network by the default pattern, or no longer.
void default_pattern(bool held);

/// A group of clients is asked for a mode.
void group_asked(Group group, std::string_view mode);

}  // namespace status

#endif
