#ifndef TESTS_SUPPORT_PLAYED_SERVER_H
#define TESTS_SUPPORT_PLAYED_SERVER_H

#include "utilities/serialization.h"
#include "utilities/socket.h"

#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>

namespace test_support {

constexpr std::chrono::seconds k_patience{10};  ///< until a test fails

struct Hello {
    std::string version;
    std::string name;
    std::string state;
};

struct Reply {
    std::uint32_t number;
    std::string state;
    std::uint32_t status;
};

bool operator==(Hello const& left, Hello const& right);
bool operator==(Reply const& left, Reply const& right);
std::ostream& operator<<(std::ostream& out, Hello const& hello);
std::ostream& operator<<(std::ostream& out, Reply const& reply);

/// The state manager's end of one connection. Receiving throws when nothing comes in time.
class Played_peer {
 public:
    explicit Played_peer(utilities::Socket socket);

    Hello hello() const;
    void request(std::uint32_t number, std::string const& state) const;
    Reply reply() const;
    void send(utilities::Bytes const& bytes) const;

    /// Waits until something has come, and leaves it unread.
    void await_input() const;

    /// Waits until the client has read all that was sent to it.
    void await_read() const;

    /// The client closes the connection without having sent anything more.
    bool is_closed() const;

 private:
    utilities::Socket socket_;
};

/// Listens where a client connects. Its end is that of a state manager that was killed: the socket's file stays.
class Played_server {
 public:
    explicit Played_server(std::string const& path);

    /// Waits for the next client.
    Played_peer accept() const;

 private:
    utilities::Socket socket_;
};

}  // namespace test_support

#endif
