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
                                       std::string socket_path, Surroundings& surroundings)
    : Client_states_front(current_state, surroundings),
      status_callback_(std::move(status_callback)),
      socket_path_(std::move(socket_path)) {
    base::All_signals_blocked const blocked;  // signals are for the main thread
    thread_ = std::thread([this] { thread_main_exception_handling(); });
}

Client_states_impl::~Client_states_impl() {
    requests_.stop();
    thread_.join();
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
    Notification_server server(socket_path_, status_callback_, requests_, clients_, surroundings_);
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
    auto const end = surroundings_.now() + k_pause;
    while (auto request = requests_.wait(end)) {
        request->completed(Callback_status::timed_out, {});
    }
}

}  // namespace client_state_notifier
