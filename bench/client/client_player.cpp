#include "bench/client/client_player.h"

#include <csignal>
#include <utility>

namespace bench::client {

using component_client::Answer;
using component_client::Status;

Client_player::Client_player(Client_options const& options, Control_loop& loop)
    : name_(options.name),
      loop_(loop),
      client_(
          options.name, [this](std::string const& state, Answer answer) { accept(state, std::move(answer)); },
          connection(options)) {
    loop_.watch(client_.descriptor(), [this] { client_.dispatch(); });
}

component_client::Options Client_player::connection(Client_options const& options) {
    component_client::Options connection;
    connection.state = options.state;
    connection.socket_path = options.socket_path;
    connection.own_thread = false;
    connection.on_connection = [this](bool connected) {
        if (!connected && owed_) {
            owed_->withhold();
            owed_.reset();
        }
        loop_.event(connected ? "connected" : "disconnected", {{"state", client_.state()}});
    };
    connection.on_trouble = [this](std::string const& text) { loop_.event("trouble", {{"text", text}}); };
    return connection;
}

void Client_player::accept(std::string const& state, Answer answer) {
    loop_.event("request", {{"number", answer.number()}, {"state", state}});
    if (behaviour_.manner == Manner::crashing) {
        loop_.event("crash", {{"state", client_.state()}});
        ::raise(SIGKILL);
    }
    owed_ = std::move(answer);
    act_on_what_is_owed();
}

void Client_player::behave(Behaviour const& behaviour) {
    behaviour_ = behaviour;
    act_on_what_is_owed();
}

void Client_player::act_on_what_is_owed() {
    auto const turn = ++turn_;
    if (!owed_) {
        return;
    }
    switch (behaviour_.manner) {
        case Manner::well:
            answer(Status::succeeded);
            break;
        case Manner::failing:
            answer(static_cast<Status>(behaviour_.status));
            break;
        case Manner::late:
            loop_.after(behaviour_.delay, [this, turn] {
                if (turn == turn_ && owed_) {
                    answer(Status::succeeded);
                }
            });
            break;
        case Manner::silent:
        case Manner::crashing:
            break;
    }
}

// Told before it is sent, so that nobody hears of what follows from it earlier.
void Client_player::answer(Status status) {
    auto const& state = status == Status::succeeded ? owed_->state() : client_.state();
    loop_.event("answer",
                {{"number", owed_->number()}, {"state", state}, {"status", static_cast<std::uint32_t>(status)}});
    owed_->send(status);
    owed_.reset();
}

nlohmann::json Client_player::describe() const {
    return {{"name", name_},
            {"state", client_.state()},
            {"as", name(behaviour_.manner)},
            {"connected", client_.connected()},
            {"owes", owed_ ? nlohmann::json(owed_->state()) : nlohmann::json()}};
}

}  // namespace bench::client
