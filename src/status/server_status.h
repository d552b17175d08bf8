#ifndef STATUS_SERVER_STATUS_H
#define STATUS_SERVER_STATUS_H

#include "status/layout.h"

#include <chrono>
#include <string_view>

/// What happens on the notification server's thread. Clients are named by their connections. See page_writer.h.
namespace status {

/// A client has introduced itself, with its name and the state that it is in; whose process it is, the socket says.
void client_connected(int connection, std::string_view name, std::string_view state);

/// A client has gone.
void client_left(int connection);

/// The server has failed, and all clients with it.
void server_failed();

/// A request: it begins, each of the clients is asked, and it ends.
void request_began(std::string_view mode, std::chrono::steady_clock::time_point deadline);
void client_asked(int connection);
void request_ended(Answer how);

/// A client has answered the last request that it was sent, whether or not somebody still waits for that.
void client_answered(int connection, std::string_view state, std::uint8_t result);

/// A client has said what nobody asked for.
void client_out_of_turn(std::string_view name);

}  // namespace status

#endif
