#include "simulation/clients.h"

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
        default:
            return "";
    }
}

}  // namespace

/// The notifier's end.
class Modelled_server : public notifier::Client_states {
 public:
    explicit Modelled_server(Clients& clients) : clients_(clients) {}

    std::vector<std::pair<std::string, std::string>> get_connected_clients() const override {
        std::vector<std::pair<std::string, std::string>> list;
        for (auto const& [id, client] : clients_.clients_) {
            list.emplace_back(client.name, client.known_state);
        }
        return list;
    }
    void set_default_state(std::string const& state) override { clients_.current_state_ = state; }
    bool request_state_change(std::string const& state, notifier::Client_predicate const& predicate,
                              notifier::Completion_callback const& completed, std::chrono::seconds timeout) override {
        if (!predicate || !completed) {
            return false;
        }
        clients_.request(state, predicate, completed, timeout);
        return true;
    }

 private:
    Clients& clients_;
};

std::unique_ptr<notifier::Client_states> Clients::serve(std::string const& current_state,
                                                        notifier::Status_callback const& status_callback) {
    current_state_ = current_state;
    status_callback_ = status_callback;
    is_serving_ = true;
    return std::make_unique<Modelled_server>(*this);
}

void Clients::connect(std::string const& name, Client_manner manner, std::string const& state) {
    bool const is_known = has(name);
    auto const id = next_id_++;
    clients_[id] = {name, state, manner, "unknown"};
    stage_.note(Kind::client, name, "connected in " + state);
    if (is_known && status_callback_) {
        status_callback_(name, notifier::Client_status::connected_under_known_name, state);
    }
    if (is_serving_ && state != current_state_) {
        ask(id, current_state_);
    }
}

void Clients::disconnect(std::string const& name) {
    std::vector<std::uint64_t> gone;
    for (auto const& [id, client] : clients_) {
        if (client.name == name) {
            gone.push_back(id);
        }
    }
    for (auto const id : gone) {
        go(id, "disconnected");
    }
}

void Clients::behave(std::string const& name, Client_manner manner) {
    for (auto& [id, client] : clients_) {
        if (client.name == name) {
            client.manner = manner;
            if (client.has_to_answer) {
                react(id);
            }
        }
    }
}

void Clients::report(std::string const& name, std::string const& state) {
    for (auto& [id, client] : clients_) {
        if (client.name == name) {
            stage_.note(Kind::client, name, "reported " + state + " out of turn");
            if (status_callback_) {
                status_callback_(name, notifier::Client_status::answered_out_of_turn, state);
            }
        }
    }
}

bool Clients::has(std::string const& name) const {
    for (auto const& [id, client] : clients_) {
        if (client.name == name) {
            return true;
        }
    }
    return false;
}

// The server's thread takes the request up; the notifier, which holds its mutex, has gone on by then. A request that
// was replaced before that is never heard of.
void Clients::request(std::string const& state, notifier::Client_predicate const& predicate,
                      notifier::Completion_callback const& completed, Time timeout) {
    auto const number = ++request_number_;
    auto const deadline = stage_.now() + timeout;
    stage_.events().after(Time(0), [this, state, predicate, completed, number, deadline] {
        if (number == request_number_) {
            begin(state, predicate, {completed, {}, {}, {}, number}, deadline);
        }
    });
}

void Clients::begin(std::string const& state, notifier::Client_predicate const& predicate, Cycle cycle, Time deadline) {
    auto const number = cycle.number;
    std::vector<std::uint64_t> asked;
    for (auto const& [id, client] : clients_) {
        if (predicate(client.name)) {
            asked.push_back(id);
        }
    }
    cycle.open.insert(asked.begin(), asked.end());
    cycle.unanswered = cycle.open;
    cycle_ = std::move(cycle);
    stage_.events().at(deadline, [this, number] { time_out(number); });
    for (auto const id : asked) {
        ++clients_.at(id).number;
        ask(id, state);
    }
    complete_if_all_answered();
}

void Clients::ask(std::uint64_t id, std::string const& state) {
    auto& client = clients_.at(id);
    client.is_asked = true;
    client.requested = state;
    client.has_to_answer = true;
    stage_.note(Kind::client, client.name, "asked " + state);
    react(id);
}

// A client answers the newest request that it was sent; one before that it forgets.
void Clients::react(std::uint64_t id) {
    auto const& client = clients_.at(id);
    if (client.manner.answer == Answer::silent) {
        return;
    }
    auto const number = client.number;
    auto const manner = client.manner.answer;
    stage_.events().after(client.manner.after, [this, id, number, manner] {
        auto const found = clients_.find(id);
        bool const is_due = found != clients_.end() && found->second.has_to_answer && found->second.number == number &&
                            found->second.manner.answer == manner;
        if (is_due) {
            manner == Answer::crashes ? go(id, "crashed") : answer(id);
        }
    });
}

void Clients::answer(std::uint64_t id) {
    auto& client = clients_.at(id);
    client.has_to_answer = false;
    client.state = client.known_state = client.requested;
    stage_.note(Kind::client, client.name, "answered " + client.state + outcome(client.manner.answer));
    if (cycle_ && cycle_->open.erase(id) != 0) {
        cycle_->unanswered.erase(id);
        record(client.name, result_of(client.manner.answer));
    }
    complete_if_all_answered();
}

// Whoever has gone without an answer is waited for until the deadline.
void Clients::go(std::uint64_t id, char const* how) {
    stage_.note(Kind::client, clients_.at(id).name, how);
    if (cycle_ && cycle_->open.erase(id) != 0) {
        record(clients_.at(id).name, Result::timed_out);
    }
    clients_.erase(id);
}

void Clients::complete_if_all_answered() {
    if (!cycle_ || cycle_->number != request_number_ || !cycle_->unanswered.empty()) {
        return;
    }
    auto const cycle = std::move(*cycle_);
    cycle_.reset();
    auto status = notifier::Callback_status::succeeded;
    for (auto const& [name, result] : cycle.results) {
        status = result == Result::succeeded ? status : notifier::Callback_status::failed;
    }
    cycle.completed(status, cycle.results);
}

void Clients::time_out(std::uint64_t number) {
    if (!cycle_ || cycle_->number != number || number != request_number_) {
        return;
    }
    for (auto const id : cycle_->open) {
        stage_.note(Kind::client, clients_.at(id).name, "has not answered in time");
        record(clients_.at(id).name, Result::timed_out);
    }
    auto const cycle = std::move(*cycle_);
    cycle_.reset();
    cycle.completed(notifier::Callback_status::timed_out, cycle.results);
}

void Clients::record(std::string const& name, Result result) {
    auto& kept = cycle_->results.try_emplace(name, result).first->second;
    kept = kept < result ? result : kept;
}

}  // namespace simulation
