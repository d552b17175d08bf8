#ifndef CLIENT_STATE_NOTIFIER_CLIENT_STATE_H
#define CLIENT_STATE_NOTIFIER_CLIENT_STATE_H

#include "client_state_notifier/inbox.h"
#include "utilities/socket.h"

#include <cstdint>
#include <map>
#include <string>

namespace client_state_notifier {

/// A client that has introduced itself.
struct Client_state {
    std::string name;
    std::string state;                ///< "unknown" until it answers a request
    std::uint32_t request_number{0};  ///< of the last request sent to it; counts from 1, 0 is sent at connect time
    std::string requested_state;      ///< of the last request sent to it
    bool is_asked{false};             ///< a request has been sent to it
    Inbox inbox;
};

/// Orders sockets by descriptor, and finds them by it.
struct Socket_comparator {
    using is_transparent = void;

    bool operator()(utilities::Socket const& left, utilities::Socket const& right) const {
        return left.get_fd() < right.get_fd();
    }
    bool operator()(utilities::Socket const& left, int right) const { return left.get_fd() < right; }
    bool operator()(int left, utilities::Socket const& right) const { return left < right.get_fd(); }
};

using Client_map = std::map<utilities::Socket, Client_state, Socket_comparator>;

}  // namespace client_state_notifier

#endif
