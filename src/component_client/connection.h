#ifndef COMPONENT_CLIENT_CONNECTION_H
#define COMPONENT_CLIENT_CONNECTION_H

#include "utilities/frame_assembler.h"
#include "utilities/socket.h"

#include <cstdint>
#include <string>
#include <vector>

namespace component_client {

/// A request as it came from the state manager.
struct Wire_request {
    std::uint32_t number;
    std::string state;
};

/// One connection to the state manager, on a socket that does not block. Operations throw when it is lost: the peer has
/// closed it, the system has, or what comes is no message of the protocol. Used by one thread at a time.
class Connection {
 public:
    explicit Connection(utilities::Socket socket) : socket_(std::move(socket)) {}

    int descriptor() const { return socket_.get_fd(); }

    /// Queues a message; `flush` sends as much as goes now.
    void queue(utilities::Type_length_values const& message);
    void flush();
    bool has_unsent() const { return !unsent_.empty(); }

    /// The requests that have arrived completely.
    std::vector<Wire_request> receive();

 private:
    bool receive_bytes();

    utilities::Socket socket_;
    utilities::Frame_assembler assembler_;
    utilities::Bytes unsent_;
};

}  // namespace component_client

#endif
