#ifndef COMPONENT_CLIENT_CLIENT_H
#define COMPONENT_CLIENT_CLIENT_H

#include "component_client/answer.h"

#include <functional>
#include <memory>
#include <string>

namespace component_client {

// Takes part in the suspends and resumes of the machine. The state manager asks each client to bring itself into a
// state, "kPrepSD" before the machine stands by and "kOn" when it is back, and waits a limited time for its answer.
// A complete application:
//
//     #include "component_client/client.h"
//     #include <unistd.h>
//     using namespace component_client;
//
//     int main() {
//         Client const client("my_application", [](std::string const& state, Answer answer) {
//             answer.send(state == "kOn" || state == "kPrepSD" ? Status::succeeded : Status::invalid);
//         });
//         return ::pause();  // the application's own work
//     }

/// Called with the state to go to and the answer to give, now or later, from here or from any thread. Requests come one
/// after the other. Of those that have come while an earlier one was handled only the newest is told.
using Request_handler = std::function<void(std::string const& state, Answer answer)>;

struct Options {
    /// The state that is announced when the client connects first. Afterwards it is the one answered last.
    std::string state{"kOn"};

    /// Where the state manager listens. When empty, what the environment variable AP_STATEMANAGER_SOCKET says (not in
    /// programs that run with more rights than their user); without it /var/run/adaptive/ara_SM/ara_SM.socket.
    std::string socket_path{};

    /// Whether the client runs on a thread of its own, which it starts with all signals blocked. Otherwise `run`, or
    /// `descriptor` and `dispatch`, run it on a thread of the caller's.
    bool own_thread{true};

    /// Called with true when the client has connected and said who it is, and with false when the connection is lost.
    /// It comes back by itself: while there is no state manager it is tried every 100 ms.
    std::function<void(bool connected)> on_connection{};

    /// Called with what went wrong: a failure to connect other than that nobody listens (once, until something else
    /// happens), a message that is none, an exception of the handler on the client's own thread.
    std::function<void(std::string const& trouble)> on_trouble{};
};

/// One client of the state manager. Callbacks come on the thread that runs the client, without a lock held; they may
/// call everything here.
class Client {
 public:
    /// Throws std::invalid_argument for an empty name or without a handler, std::runtime_error for a path that is too
    /// long for a socket, std::system_error when the system gives no descriptors or no thread.
    Client(std::string name, Request_handler handler, Options options = {});

    /// Stops, sends the answers that were given, disconnects, and waits for a callback that runs on the client's own
    /// thread, unless it is called from there.
    ~Client();
    Client(Client&&) noexcept;
    Client& operator=(Client&&) = delete;
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    /// No further callbacks start, `run` returns, the connection is closed. From any thread and any callback; returns
    /// at once. A client that was stopped stays so.
    void stop();

    /// Runs on the calling thread until `stop`. For clients without a thread of their own, as the next two;
    /// with one they throw std::logic_error. An exception of a callback passes through, and `run` may be called again.
    void run();

    /// Is readable whenever `dispatch` has something to do. Poll for nothing but POLLIN; it stays the client's.
    int descriptor() const;

    /// Does what is to be done and returns; it never blocks, except by the callbacks. One thread at a time.
    void dispatch();

    /// The state that the client is in: the one announced or answered last.
    std::string state() const;

    /// The client has come into another state by itself. It is announced at the next connect and not told to the
    /// state manager before: that takes unasked reports for errors.
    void set_state(std::string const& state);

    bool connected() const;

 private:
    void require_callers_thread() const;

    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace component_client

#endif
