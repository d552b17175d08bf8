#ifndef TESTS_SUPPORT_TEST_CLIENT_H
#define TESTS_SUPPORT_TEST_CLIENT_H

#include "support/passed_descriptor.h"
#include "utilities/messages.h"
#include "utilities/protocol.h"
#include "utilities/serialization.h"
#include "utilities/socket.h"

#include <chrono>
#include <cstdint>
#include <string>

#include <poll.h>
#include <sys/socket.h>

namespace test_support {

/// A client of the notification server as a test plays it: it does what it is told, right or wrong, and waits for
/// nothing longer than a few seconds.
class Test_client {
 public:
    struct Request {
        std::uint32_t number;
        std::string state;
    };

    /// Connects, waiting until the server is there.
    explicit Test_client(std::string const& path) : socket_(AF_UNIX, SOCK_STREAM, 0) {
        static auto const never = utilities::socket_pair();
        socket_.try_connect(utilities::create_unix_address(path), never.first);
        timeval const patience{5, 0};
        ::setsockopt(socket_.get_fd(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }

    /// Connects and introduces itself.
    Test_client(std::string const& path, std::string const& name, std::string const& state) : Test_client(path) {
        introduce(name, state);
    }

    void introduce(std::string const& name, std::string const& state) {
        send({utilities::Type_length_value(utilities::get_protocol_version_one()), utilities::Type_length_value(name),
              utilities::Type_length_value(state)});
    }

    void answer(std::uint32_t number, std::string const& state, std::uint32_t status = 0) {
        send({utilities::Type_length_value(number), utilities::Type_length_value(state),
              utilities::Type_length_value(status)});
    }

    void send(utilities::Type_length_values const& message) { utilities::send_type_length_values(socket_, message); }
    void send_bytes(void const* bytes, std::size_t count) { socket_.sendl(bytes, count, 0); }

    /// Sends a message with a descriptor of this process's.
    void send_with_descriptor(utilities::Type_length_values const& message, int descriptor) {
        test_support::send_with_descriptor(socket_.get_fd(), utilities::serialize(message), descriptor);
    }

    /// The next request; throws when there is none within a few seconds, or the server has closed the connection.
    Request receive() {
        auto const message = utilities::receive_type_length_values(socket_);
        return {message.at(0).get_uint32(), message.at(1).get_string()};
    }

    /// Receives a request and answers it as a well-behaved client does.
    Request obey(std::uint32_t status = 0) {
        auto request = receive();
        answer(request.number, request.state, status);
        return request;
    }

    /// Something has arrived, or does within the time.
    bool has_input(std::chrono::milliseconds time = std::chrono::milliseconds(0)) {
        return socket_.poll(POLLIN, time.count()).second;
    }

    /// The server has closed the connection, or does within a few seconds.
    bool is_closed_by_server() {
        try {
            for (;;) {
                utilities::receive_type_length_values(socket_);
            }
        } catch (utilities::ExceptionSocketTimeout const&) {
            return false;
        } catch (std::exception const&) {
            return true;
        }
    }

    utilities::Socket& socket() { return socket_; }

 private:
    utilities::Socket socket_;
};

}  // namespace test_support

#endif
