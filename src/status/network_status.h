#ifndef STATUS_NETWORK_STATUS_H
#define STATUS_NETWORK_STATUS_H

#include "status/layout.h"

#include <cstddef>
#include <cstdint>

/// What happens where reports of the network arrive: one after the other, on threads of the communication binding. See
/// page_writer.h.
namespace status {

/// What the reports have made of the ECU: 0 active, 1 ready sleep, 2 sleep mode.
void ecu_state(std::uint64_t state);

/// A report arrived.
void network_state(std::uint8_t const* bytes, std::size_t count);

/// A call of network management failed. Any thread.
void call_failed(Network_call call);

}  // namespace status

#endif
