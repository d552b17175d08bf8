#include "simulation/clients.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace simulation {

namespace notifier = client_state_notifier;
using Answer = Client_manner::Answer;
using Result = notifier::Component_client_return_type;

namespace {

Result result_of(Answer answer) {
    switch (answer) {
        case Answer::fails:
            return Result::general_error;
        case Answer::is_invalid:
            return Result::invalid;
        default:
            return Result::succeeded;
    }
}

char const* outcome(Answer answer) {
    switch (answer) {
        case Answer::fails:
            return ", failed";
        case Answer::is_invalid:
            return ", invalid";
        case Answer::succeeds_twice:
            return ", twice";
        default:
            return "";
    }
}

}  // namespace

/// The real one. Who has not answered in time is noted.
class Clients::Server final : public Memory_server {
 public:
    Server(std::string const& current_state, notifier::Status_callback const& status_callback, Clients& clients)
        : Memory_server(current_state, status_callback, clients.sockets_), clients_(clients) {}
    ~Server() override { clients_.server_ = nullptr; }

    bool request_state_change(std::string const& state, notifier::Client_predicate const& predicate,
                              notifier::Completion_callback const& completed, std::chrono::seconds timeout) override {
        auto const noted = [this, completed](notifier::Callback_status status,
                                             notifier::Client_results const& results) {
            if (status == notifier::Callback_status::timed_out) {
                clients_.note_silent(results);
            }
            if (clients_.is_holding_) {
                clients_.held_.emplace_back([=] { completed(status, results); });
            } else {
                completed(status, results);
            }
        };
        return Memory_server::request_state_change(state, predicate, noted, timeout);
    }

 private:
    Clients& clients_;
};

std::unique_ptr<notifier::Client_states> Clients::serve(std::string const& current_state,
                                                        notifier::Status_callback const& status_callback) {
    auto server = std::make_unique<Server>(current_state, status_callback, *this);
    server_ = server.get();
    sockets_.on_change([this] { arm(); });
    for (auto& [id, client] : clients_) {
        client.end.emplace(sockets_, client.name, client.state);
    }
    return server;
}

void Clients::connect(std::string const& name, Client_manner manner, std::string const& state) {
    auto& client = clients_[next_id_++];
    client = {name, state, manner};
    stage_.note(Kind::client, name, "connected in " + state);
    if (server_ != nullptr) {
        client.end.emplace(sockets_, name, state);
    }
}

void Clients::disconnect(std::string const& name) {
    for (auto const id : all(name)) {
        go(id, "disconnected");
    }
}

void Clients::behave(std::string const& name, Client_manner manner) {
    for (auto const id : all(name)) {
        auto& client = clients_.at(id);
        client.manner = manner;
        if (client.request) {
            react(id);
        }
    }
}

void Clients::report(std::string const& name, std::string const& state) {
    for (auto const id : all(name)) {
        stage_.note(Kind::client, name, "reported " + state + " out of turn");
        if (auto const& end = clients_.at(id).end) {
            end->answer({clients_.at(id).number_before, state}, 0);
        }
    }
}

void Clients::let_completions() {
    for (auto const& complete : std::exchange(held_, {})) {
        complete();
    }
}

bool Clients::has(std::string const& name) const {
    return !all(name).empty();
}

std::vector<std::uint64_t> Clients::all(std::string const& name) const {
    std::vector<std::uint64_t> ids;
    for (auto const& [id, client] : clients_) {
        if (client.name == name) {
            ids.push_back(id);
        }
    }
    return ids;
}

// Something has changed on a socket. The server's turn comes when whoever did that is done: the notifier asks under a
// mutex that its callbacks take.
void Clients::arm() {
    if (!std::exchange(is_due_, true)) {
        stage_.events().after(Time(0), [this] { turn(); });
    }
}

void Clients::turn() {
    is_due_ = false;
    if (server_ == nullptr) {
        return;
    }
    server_->serve();
    for (auto place = clients_.begin(); place != clients_.end();) {
        hear((place++)->first);
    }
    auto const next = server_->next_deadline();
    if (next != deadline_ && next) {
        stage_.events().at(*next, [this] { arm(); });
    }
    deadline_ = next;
}

// What a client is asked, or that the server has dropped it.
void Clients::hear(std::uint64_t id) {
    auto& client = clients_.at(id);
    if (!client.end) {
        return;
    }
    while (auto request = client.end->take_request()) {
        client.number_before = std::exchange(client.last_number, request->number);
        client.request = std::move(request);
        ++client.requests;
        stage_.note(Kind::client, client.name, "asked " + client.request->state);
        react(id);
    }
    if (client.end->has_ended()) {
        go(id, "was dropped");
    }
}

// A client answers the newest request that it was sent; one before that it forgets.
void Clients::react(std::uint64_t id) {
    auto const& client = clients_.at(id);
    if (client.manner.answer == Answer::silent) {
        return;
    }
    auto const number = client.requests;
    auto const manner = client.manner.answer;
    stage_.events().after(client.manner.after, [this, id, number, manner] {
        auto const found = clients_.find(id);
        bool const is_due = found != clients_.end() && found->second.request && found->second.requests == number &&
                            found->second.manner.answer == manner;
        if (is_due) {
            manner == Answer::crashes ? go(id, "crashed") : answer(id);
        }
    });
}

void Clients::answer(std::uint64_t id) {
    auto& client = clients_.at(id);
    auto const request = *std::exchange(client.request, std::nullopt);
    client.state = request.state;
    stage_.note(Kind::client, client.name, "answered " + client.state + outcome(client.manner.answer));
    auto const result = static_cast<std::uint32_t>(result_of(client.manner.answer));
    client.end->answer(request, result);
    if (client.manner.answer == Answer::succeeds_twice) {
        client.end->answer(request, result);
    }
}

void Clients::go(std::uint64_t id, char const* how) {
    stage_.note(Kind::client, clients_.at(id).name, how);
    clients_.erase(id);
}

void Clients::note_silent(notifier::Client_results const& results) {
    for (auto const& [id, client] : clients_) {
        auto const result = results.find(client.name);
        if (client.request && result != results.end() && result->second == Result::timed_out) {
            stage_.note(Kind::client, client.name, "has not answered in time");
        }
    }
}

}  // namespace simulation
