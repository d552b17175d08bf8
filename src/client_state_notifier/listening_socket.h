#ifndef CLIENT_STATE_NOTIFIER_LISTENING_SOCKET_H
#define CLIENT_STATE_NOTIFIER_LISTENING_SOCKET_H

#include "client_state_notifier/surroundings.h"

#include <chrono>
#include <optional>
#include <string>

#include <poll.h>

namespace client_state_notifier {

/// The Unix stream socket at which clients arrive. The socket file is there as long as this object; who may connect is
/// the matter of the directory and of the process's umask.
class Listening_socket {
 public:
    /// How long no connection is taken after one could not be had: a failure that stays neither spins nor fills the
    /// log.
    static constexpr std::chrono::milliseconds k_pause{100};

    /// Makes the directories of the path, replaces a socket file that an earlier process left, binds and listens. The
    /// surroundings must outlive the socket.
    Listening_socket(std::string const& path, Surroundings& surroundings);

    /// The entry of the poll set as of now; it waits for nothing during a pause.
    pollfd poll_entry(std::chrono::steady_clock::time_point now) const;

    /// The end of a pause that is going on now.
    std::optional<std::chrono::steady_clock::time_point> pause_end(std::chrono::steady_clock::time_point now) const;

    /// The next connection, close-on-exec. Nothing when there is none, or when it could not be had, which is logged.
    /// Throws std::system_error when the socket itself is of no use any more.
    std::optional<utilities::Socket> accept();

 private:
    void pause(int error);

    Surroundings& surroundings_;
    Bound_socket bound_;
    std::chrono::steady_clock::time_point paused_until_;
};

}  // namespace client_state_notifier

#endif
