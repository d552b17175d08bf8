#include "component_client/client.h"

#include "base/signals.h"
#include "component_client/engine.h"

#include <stdexcept>
#include <thread>
#include <utility>

namespace component_client {

struct Client::Implementation {
    std::shared_ptr<Engine> engine;
    std::thread thread{};
};

Client::Client(std::string name, Request_handler handler, Options options) {
    bool const own_thread = options.own_thread;
    auto engine = std::make_shared<Engine>(std::move(name), std::move(handler), std::move(options));
    implementation_ = std::make_unique<Implementation>(Implementation{std::move(engine)});
    if (own_thread) {
        base::All_signals_blocked const blocked;
        // The thread keeps the engine: its callback may destroy the client.
        implementation_->thread = std::thread([engine = implementation_->engine] { engine->run_reporting(); });
    }
}

Client::~Client() {
    if (!implementation_) {
        return;
    }
    stop();
    auto& thread = implementation_->thread;
    if (!thread.joinable()) {
        implementation_->engine->close();
    } else if (thread.get_id() == std::this_thread::get_id()) {
        thread.detach();
    } else {
        thread.join();
    }
}

Client::Client(Client&&) noexcept = default;

void Client::stop() {
    implementation_->engine->stop();
}

void Client::run() {
    require_callers_thread();
    implementation_->engine->run();
}

int Client::descriptor() const {
    return implementation_->engine->descriptor();
}

void Client::require_callers_thread() const {
    if (implementation_->thread.joinable()) {
        throw std::logic_error("the client runs on a thread of its own");
    }
}

void Client::dispatch() {
    require_callers_thread();
    implementation_->engine->dispatch();
}

std::string Client::state() const {
    return implementation_->engine->state();
}

void Client::set_state(std::string const& state) {
    implementation_->engine->set_state(state);
}

bool Client::connected() const {
    return implementation_->engine->is_connected();
}

}  // namespace component_client
