// One thread, in `run` or in its owner's loop, calls `dispatch` whenever something is ready: after `stop` it closes,
// else it connects and introduces itself when the alarm says so, sends the answers that other threads have put into
// the book, and hands the newest request that has arrived to the handler.

#include "component_client/engine.h"

#include "component_client/socket_path.h"
#include "utilities/protocol.h"

#include <chrono>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/socket.h>

namespace component_client {

using utilities::Type_length_value;

namespace {

constexpr std::chrono::nanoseconds k_at_once{1};

}  // namespace

Engine::Engine(std::string name, Request_handler handler, Options options)
    : name_(std::move(name)),
      handler_(std::move(handler)),
      options_(std::move(options)),
      address_(utilities::create_unix_address(socket_path(options_.socket_path))),
      no_waiting_(utilities::socket_pair().first),
      book_(std::make_shared<Answer_book>(options_.state)) {
    if (name_.empty() || !handler_) {
        throw std::invalid_argument("a client needs a name and a handler");
    }
    watch_.add(book_->bell().descriptor());
    watch_.add(alarm_.descriptor());
    alarm_.set(k_at_once);
}

void Engine::dispatch() {
    book_->bell().clear();
    if (is_stopped_) {
        close();
        return;
    }
    if (alarm_.take() && !connection_) {
        connect();
    }
    if (connection_) {
        exchange();
    }
}

void Engine::run() {
    while (!is_stopped_) {
        watch_.wait();
        dispatch();
    }
    close();
}

void Engine::run_reporting() {
    while (!is_stopped_) {
        try {
            run();
        } catch (std::exception const& error) {
            report(error.what());
        } catch (...) {
            report("a callback has thrown something unknown");
        }
    }
    close();
}

void Engine::stop() {
    is_stopped_ = true;
    book_->bell().ring();
}

void Engine::close() {
    if (connection_) {
        try {
            send_answers();
        } catch (std::exception const&) {  // the peer was faster
        }
        is_connected_ = false;
        connection_.reset();
    }
    book_->forget_requests();
}

void Engine::connect() {
    if (auto socket = try_to_connect()) {
        introduce(std::move(*socket));
    } else {
        alarm_.set(utilities::Socket::k_connect_retry);
    }
}

std::optional<utilities::Socket> Engine::try_to_connect() {
    try {
        utilities::Socket socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (socket.try_connect(address_, no_waiting_)) {
            return socket;
        }
    } catch (std::system_error const& error) {
        report(error.what());
    }
    return std::nullopt;
}

void Engine::introduce(utilities::Socket socket) {
    connection_.emplace(std::move(socket));
    watch_.add(connection_->descriptor());
    watch_.want_write(connection_->descriptor(), true);
    connection_->queue({Type_length_value(utilities::get_protocol_version_one()), Type_length_value(name_),
                        Type_length_value(state())});
    is_connected_ = true;
    last_trouble_.clear();
    if (options_.on_connection) {
        options_.on_connection(true);
    }
}

void Engine::exchange() {
    std::vector<Wire_request> requests;
    try {
        send_answers();
        requests = connection_->receive();
    } catch (utilities::ExceptionSocketClosed const&) {
        lose("");
    } catch (std::system_error const&) {  // the same, seen in another call
        lose("");
    } catch (std::exception const& error) {
        lose(error.what());
    }
    if (!requests.empty() && !is_stopped_) {
        hand_over(requests.back());
    }
}

void Engine::send_answers() {
    for (auto const& message : book_->take_messages()) {
        connection_->queue(message);
    }
    connection_->flush();
    watch_.want_write(connection_->descriptor(), connection_->has_unsent());
}

void Engine::hand_over(Wire_request const& request) {
    auto const count = book_->open(request.number);
    handler_(request.state, Answer(book_, count, request.number, request.state));
}

void Engine::lose(std::string const& reason) {
    is_connected_ = false;
    connection_.reset();
    book_->forget_requests();
    alarm_.set(utilities::Socket::k_connect_retry);
    if (!reason.empty()) {
        report(reason);
    }
    if (options_.on_connection) {
        options_.on_connection(false);
    }
}

void Engine::report(std::string const& trouble) {
    if (trouble != std::exchange(last_trouble_, trouble) && options_.on_trouble) {
        options_.on_trouble(trouble);
    }
}

}  // namespace component_client
