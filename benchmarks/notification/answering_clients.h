#ifndef BENCHMARKS_NOTIFICATION_ANSWERING_CLIENTS_H
#define BENCHMARKS_NOTIFICATION_ANSWERING_CLIENTS_H

#include "utilities/socket.h"

#include <cstddef>
#include <string>
#include <thread>
#include <vector>

namespace benchmarks {

/// Clients that introduce themselves and then answer each request at once, with as little work as can be: they know
/// how long a request is, and copy its number into an answer that is ready. One thread for all of them.
class Answering_clients {
 public:
    /// Requests are for this state; the lengths of the messages follow from it.
    static constexpr char const* k_state = "kPrepSD";

    Answering_clients(std::string const& path, std::size_t count);
    ~Answering_clients();
    Answering_clients(Answering_clients const&) = delete;
    Answering_clients& operator=(Answering_clients const&) = delete;

 private:
    void connect(std::string const& path, std::size_t number);
    void answer_requests();

    std::vector<utilities::Socket> clients_;
    std::pair<utilities::Socket, utilities::Socket> stop_{utilities::socket_pair()};
    utilities::Socket events_;  ///< an epoll instance
    std::thread thread_;
};

}  // namespace benchmarks

#endif
