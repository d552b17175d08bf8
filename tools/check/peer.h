#ifndef TOOLS_CHECK_PEER_H
#define TOOLS_CHECK_PEER_H

#include "utilities/frame_assembler.h"
#include "utilities/serialization.h"
#include "utilities/socket.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace statectl::check {

using Milliseconds = std::chrono::milliseconds;
using utilities::Type_length_values;

/// The state manager's end of a connection with the program under check.
class Peer {
 public:
    explicit Peer(utilities::Socket socket) : socket_(std::move(socket)) {}

    /// The next message; nothing when none comes in time, or when the program has closed the connection. Throws what a
    /// Frame_assembler throws for bytes that are no message.
    std::optional<Type_length_values> receive(Milliseconds limit);

    void request(std::uint32_t number, std::string const& state) const;

    /// A program that has closed the connection is left to the rules to find out.
    void send(utilities::Bytes const& bytes) const;

    /// Waits until the program has read all that was sent, for so long at most. What it has not read it gets at once.
    void await_reading(Milliseconds limit) const;

    bool is_closed() const { return is_closed_; }

 private:
    bool receive_bytes(Milliseconds limit);

    utilities::Socket socket_;
    utilities::Frame_assembler assembler_;
    bool is_closed_{false};
};

/// The bytes of a request.
utilities::Bytes request_bytes(std::uint32_t number, std::string const& state);

/// A message as a text for people: "3 kOn 0".
std::string describe(Type_length_values const& message);

}  // namespace statectl::check

#endif
