#ifndef UTILITIES_MESSAGES_H
#define UTILITIES_MESSAGES_H

#include "utilities/socket.h"
#include "utilities/type_length_value.h"

namespace utilities {

// Whole messages over sockets that block. Failures of the socket and of the format pass through as exceptions.

void send_type_length_values(Socket const& socket, Type_length_values const& list);

/// Waits for one whole message. Memory grows with the bytes that arrive, not with the length that is announced. The
/// type of the outer frame is not looked at.
Type_length_values receive_type_length_values(Socket const& socket);

}  // namespace utilities

#endif
