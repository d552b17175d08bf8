#ifndef COMPONENT_CLIENT_ENGINE_H
#define COMPONENT_CLIENT_ENGINE_H

#include "component_client/answer_book.h"
#include "component_client/client.h"
#include "component_client/connection.h"
#include "component_client/event_sources.h"
#include "utilities/socket.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string>

namespace component_client {

/// Runs one client: connects, says who it is, hands requests to the handler, sends answers, and connects again when
/// the connection is lost. One thread runs it; `stop`, `state`, `set_state` and the answers are for all threads.
class Engine {
 public:
    Engine(std::string name, Request_handler handler, Options options);

    int descriptor() const { return watch_.descriptor(); }
    void dispatch();

    /// Until `stop`.
    void run();

    /// The same, with exceptions of the callbacks reported.
    void run_reporting();

    void stop();

    /// Sends what is still to be sent and disconnects, without a callback.
    void close();

    std::string state() const { return book_->state(); }
    void set_state(std::string const& state) { book_->set_state(state); }
    bool is_connected() const { return is_connected_; }

 private:
    void connect();
    std::optional<utilities::Socket> try_to_connect();
    void introduce(utilities::Socket socket);
    void exchange();
    void send_answers();
    void hand_over(Wire_request const& request);
    void lose(std::string const& reason);
    void report(std::string const& trouble);

    std::string name_;
    Request_handler handler_;
    Options options_;
    sockaddr_un address_;
    utilities::Socket no_waiting_;  ///< always readable: a single try to connect
    Alarm alarm_;                   ///< for the next try to connect
    Watch watch_;
    std::shared_ptr<Answer_book> book_;
    std::optional<Connection> connection_;
    std::string last_trouble_;
    std::atomic<bool> is_connected_{false};
    std::atomic<bool> is_stopped_{false};
};

}  // namespace component_client

#endif
