#ifndef UTILITIES_SOCKET_CALLS_H
#define UTILITIES_SOCKET_CALLS_H

#include <cstddef>
#include <ctime>

#include <poll.h>
#include <sys/types.h>

namespace utilities {

/// The system calls of sockets that are connected. Others than the system's take their numbers for descriptors of their
/// own, and fail like the system: with -1 and errno.
class Socket_calls {
 public:
    virtual ssize_t send(int socket, void const* bytes, std::size_t length, int flags) = 0;
    virtual ssize_t recv(int socket, void* bytes, std::size_t length, int flags) = 0;
    virtual int close(int socket) = 0;
    virtual int poll(pollfd* entries, std::size_t count, timespec const* timeout) = 0;

 protected:
    constexpr Socket_calls() = default;
    ~Socket_calls() = default;
    Socket_calls(Socket_calls const&) = default;
    Socket_calls& operator=(Socket_calls const&) = default;
};

/// The system's.
Socket_calls& system_socket_calls() noexcept;

}  // namespace utilities

#endif
