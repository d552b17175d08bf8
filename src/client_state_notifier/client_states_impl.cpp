// Callers put a request into the slot, from any thread, and return. The server's thread, which the constructor starts
// and the destructor ends, runs a server that takes the request and completes it; after one that fails it pauses and
// makes a new one.

#include "client_state_notifier/client_states_impl.h"

#include "base/signals.h"
#include "client_state_notifier/notification_server.h"
#include "status/server_status.h"
#include "utilities/logger.h"

#include <exception>
#include <utility>

namespace client_state_notifier {

Client_states_impl::Client_states_impl(std::string const& current_state, Status_callback status_callback,
                                       std::string socket_path)
    : status_callback_(std::move(status_callback)), socket_path_(std::move(socket_path)), clients_(current_state) {
    base::All_signals_blocked const blocked;  // signals are for the main thread
    thread_ = std::thread([this] { thread_main_exception_handling(); });
}

Client_states_impl::~Client_states_impl() {
    requests_.stop();
    thread_.join();
}

std::vector<std::pair<std::string, std::string>> Client_states_impl::get_connected_clients() const {
    return clients_.list();
}

void Client_states_impl::set_default_state(std::string const& state) {
    clients_.set_current_state(state);
}

bool Client_states_impl::request_state_change(std::string const& state, Client_predicate const& predicate,
                                              Completion_callback const& completed, std::chrono::seconds timeout) {
    if (!predicate || !completed) {
        return false;
    }
    if (!requests_.put({state, predicate, completed, std::chrono::steady_clock::now() + timeout, 0})) {
        utilities::get_logger().LogError() << "the server can't be told to ask clients for " << state;
        return false;
    }
    return true;
}

void Client_states_impl::thread_main_exception_handling() {
    do {
        try {
            thread_main();
            return;
        } catch (std::exception const& error) {
            utilities::get_logger().LogError() << "Client_states_impl thread crashed: " << error.what();
        }
        clients_.clear();
        status::server_failed();
        requests_.forget_wake_ups();
        pause();
    } while (!requests_.is_stopped());
}

void Client_states_impl::thread_main() {
    Notification_server server(socket_path_, status_callback_, requests_, clients_);
    try {
        server.run();
    } catch (...) {
        if (auto cycle = server.take_cycle()) {
            cycle->time_out();
        }
        throw;
    }
}

void Client_states_impl::pause() {
    auto const end = std::chrono::steady_clock::now() + k_pause;
    while (auto request = requests_.wait(end)) {
        request->completed(Callback_status::timed_out, {});
    }
}

}  // namespace client_state_notifier
