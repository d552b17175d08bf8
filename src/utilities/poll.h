#ifndef UTILITIES_POLL_H
#define UTILITIES_POLL_H

#include "utilities/socket.h"

#include <vector>

#include <poll.h>

namespace utilities {

/// Waits until at least one descriptor is ready and returns true, or until the time has passed and returns false. A
/// negative time waits without limit. Interruptions are waited out; each starts the time anew.
bool poll(std::vector<pollfd>& descriptors, long timeout_ms, Socket_calls& calls = system_socket_calls());

/// One entry of a poll set.
pollfd create_pollfd_helper(short events, Socket const& socket);

/// A poll set that waits for the same events of each socket, in the order given.
template <class... Sockets>
std::vector<pollfd> create_pollfd([[maybe_unused]] short events, Sockets const&... sockets) {
    return {create_pollfd_helper(events, sockets)...};
}

}  // namespace utilities

#endif
