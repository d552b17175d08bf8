#ifndef TESTS_COMPONENT_HOSTILE_CLIENTS_HOSTILE_CONNECTION_H
#define TESTS_COMPONENT_HOSTILE_CLIENTS_HOSTILE_CONNECTION_H

#include "utilities/frame_assembler.h"
#include "utilities/serialization.h"
#include "utilities/socket.h"

#include <cstdint>
#include <optional>
#include <string>

namespace hostile {

/// One connection of a client that keeps to nothing. No operation waits; what does not go out now is not sent.
class Hostile_connection {
 public:
    struct Request {
        std::uint32_t number;
        std::string state;
    };

    /// Connects if the server has room for one more now.
    bool connect(std::string const& path);

    /// The server has closed it, it was never there, or `close` was called.
    bool is_closed() const { return socket_.get_fd() == utilities::Socket::k_none; }
    void close() { socket_ = utilities::Socket(); }

    void introduce(std::string const& name, std::string const& state = "kOn");
    void answer(std::uint32_t request, std::string const& state, std::uint32_t status = 0);
    void send(utilities::Type_length_values const& message) { send_bytes(utilities::serialize(message)); }
    void send_bytes(utilities::Bytes const& bytes);

    /// The next request, if it has arrived.
    std::optional<Request> take_request();

    int descriptor() const { return socket_.get_fd(); }

    /// Connections of the same kind differ in it; for names and for where things break off.
    unsigned number{0};

    /// How often this connection was made, and how often it had its turn since.
    unsigned lives{0};
    unsigned turns{0};

    /// What a kind of misbehaviour wants to remember.
    std::optional<Request> kept;

 private:
    utilities::Socket socket_;
    utilities::Frame_assembler frames_;
};

}  // namespace hostile

#endif
