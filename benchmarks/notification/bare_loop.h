#ifndef BENCHMARKS_NOTIFICATION_BARE_LOOP_H
#define BENCHMARKS_NOTIFICATION_BARE_LOOP_H

#include "utilities/socket.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>

namespace benchmarks {

/// The least that any server with `poll` does for a cycle: woken by a message, it sends the same request to each client
/// and reads until everybody has sent an answer. It parses nothing, checks nothing, keeps no time, and trusts
/// everybody.
class Bare_loop {
 public:
    Bare_loop(std::string const& path, std::size_t clients);

    /// Ends the thread.
    ~Bare_loop();
    Bare_loop(Bare_loop const&) = delete;
    Bare_loop& operator=(Bare_loop const&) = delete;

    /// Everybody has connected.
    bool is_complete() const { return is_complete_; }

    /// Starts a cycle; `completed` is called on the loop's thread. One at a time.
    void request(std::function<void()> completed);

 private:
    void serve();
    void accept_clients();
    bool receive_wake_up() const;
    void send_requests();
    std::size_t read_answers();

    std::size_t const count_;
    utilities::Socket listener_;
    std::pair<utilities::Socket, utilities::Socket> wake_up_{utilities::socket_pair()};
    std::function<void()> completed_;
    std::atomic<bool> is_complete_{false};
    std::vector<utilities::Socket> clients_;
    std::vector<pollfd> poll_set_;  ///< listener, wake-up channel, clients
    std::uint32_t number_{0};
    std::thread thread_;
};

}  // namespace benchmarks

#endif
