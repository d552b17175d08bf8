#ifndef CLIENT_STATE_NOTIFIER_SURROUNDINGS_H
#define CLIENT_STATE_NOTIFIER_SURROUNDINGS_H

#include "utilities/files.h"
#include "utilities/socket.h"

#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace client_state_notifier {

/// The bell of base/bell.h, or what is one elsewhere.
class Wake_up_bell {
 public:
    Wake_up_bell() = default;
    virtual ~Wake_up_bell() = default;
    Wake_up_bell(Wake_up_bell const&) = delete;
    Wake_up_bell& operator=(Wake_up_bell const&) = delete;

    virtual int descriptor() const = 0;
    virtual bool ring() const = 0;
    virtual void clear() const = 0;
};

/// A socket that listens, and the file at which it does, which goes first.
struct Bound_socket {
    utilities::Socket socket;
    std::unique_ptr<utilities::Deleter> file;  ///< null when there is no such file
};

/// What the server has from outside: its time, its sockets, and what wakes its thread. Everything that is made here has
/// descriptors that only calls from here know. It outlives whatever it has made.
class Surroundings {
 public:
    using Clock = std::chrono::steady_clock;

    Surroundings(Surroundings const&) = delete;
    Surroundings& operator=(Surroundings const&) = delete;

    virtual Clock::time_point now() = 0;

    /// Of all sockets here.
    virtual utilities::Socket_calls& calls() = 0;

    /// A listening socket at the path, which was free or is made so. Throws std::system_error.
    virtual Bound_socket listen(std::string const& path) = 0;

    /// A connection that has arrived, or -1 and errno.
    virtual int accept(utilities::Socket const& listener) = 0;

    /// Two sockets, connected to each other. Throws std::system_error.
    virtual std::pair<utilities::Socket, utilities::Socket> socket_pair() = 0;

    virtual std::unique_ptr<Wake_up_bell> bell() = 0;

 protected:
    constexpr Surroundings() = default;
    ~Surroundings() = default;
};

/// The machine's, which nothing destroys: threads may use them until the process is gone.
Surroundings& machine_surroundings();

}  // namespace client_state_notifier

#endif
