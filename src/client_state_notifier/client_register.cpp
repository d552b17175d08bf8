#include "client_state_notifier/client_register.h"

#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <algorithm>
#include <system_error>

#include <sys/socket.h>

namespace client_state_notifier {

namespace {

// The message that asks for a state. Its number differs from client to client and stands in the first element.
utilities::Type_length_values make_request(std::string const& state) {
    return {utilities::Type_length_value(0U), utilities::Type_length_value(state)};
}

void send(utilities::Socket const& socket, Client_state& client, utilities::Type_length_values& request) {
    client.is_asked = true;
    client.inbox.expect_one();
    request.front() = utilities::Type_length_value(client.request_number);
    auto const bytes = utilities::serialize(request);
    socket.sendl(bytes.data(), bytes.size(), MSG_DONTWAIT);
}

}  // namespace

std::vector<std::pair<std::string, std::string>> Client_register::list() const {
    base::Lock_guard const lock(mutex_);
    std::vector<std::pair<std::string, std::string>> clients;
    clients.reserve(clients_.size());
    for (auto const& [socket, client] : clients_) {
        clients.emplace_back(client.name, client.state);
    }
    return clients;
}

std::string Client_register::current_state() const {
    base::Lock_guard const lock(mutex_);
    return current_state_;
}

void Client_register::set_current_state(std::string const& state) {
    base::Lock_guard const lock(mutex_);
    current_state_ = state;
}

bool Client_register::has(std::string const& name) const {
    base::Lock_guard const lock(mutex_);
    return std::any_of(clients_.begin(), clients_.end(),
                       [&](auto const& client) { return client.second.name == name; });
}

std::size_t Client_register::size() const {
    base::Lock_guard const lock(mutex_);
    return clients_.size();
}

void Client_register::add(utilities::Socket socket, std::string const& name, Inbox inbox) {
    base::Lock_guard const lock(mutex_);
    clients_.emplace(std::move(socket),
                     Client_state{name, utilities::get_unknown_state(), 0, "", false, std::move(inbox)});
}

std::string Client_register::remove(int connection) {
    base::Lock_guard const lock(mutex_);
    auto const client = clients_.find(connection);
    auto name = client->second.name;
    clients_.erase(client);
    return name;
}

void Client_register::clear() {
    base::Lock_guard const lock(mutex_);
    clients_.clear();
}

std::string Client_register::name_of(int connection) const {
    base::Lock_guard const lock(mutex_);
    return clients_.find(connection)->second.name;
}

std::vector<std::pair<int, std::string>> Client_register::select(Client_predicate const& predicate) const {
    std::vector<std::pair<int, std::string>> clients;
    {
        base::Lock_guard const lock(mutex_);
        clients.reserve(clients_.size());
        for (auto const& [socket, client] : clients_) {
            clients.emplace_back(socket.get_fd(), client.name);
        }
    }
    clients.erase(
        std::remove_if(clients.begin(), clients.end(), [&](auto const& client) { return !predicate(client.second); }),
        clients.end());
    return clients;
}

void Client_register::add_to(std::vector<pollfd>& poll_set) const {
    base::Lock_guard const lock(mutex_);
    for (auto const& [socket, client] : clients_) {
        poll_set.push_back({socket.get_fd(), POLLIN, 0});
    }
}

void Client_register::send_request(int connection, std::string const& state) {
    auto request = make_request(state);
    base::Lock_guard const lock(mutex_);
    auto& [socket, client] = *clients_.find(connection);
    client.requested_state = state;
    send(socket, client, request);
}

std::map<int, std::string> Client_register::send_next_request(std::vector<int> const& connections,
                                                              std::string const& state) {
    std::map<int, std::string> failures;
    auto request = make_request(state);
    base::Lock_guard const lock(mutex_);
    for (int const connection : connections) {
        auto& [socket, client] = *clients_.find(connection);
        client.requested_state = state;
        ++client.request_number;
        try {
            send(socket, client, request);
        } catch (std::system_error const& error) {
            failures.emplace(connection, error.what());
        }
    }
    return failures;
}

void Client_register::receive(int connection) {
    base::Lock_guard const lock(mutex_);
    auto& [socket, client] = *clients_.find(connection);
    client.inbox.receive(socket);
}

std::optional<Client_answer> Client_register::take_answer(int connection, Inbox::Clock::time_point now) {
    base::Lock_guard const lock(mutex_);
    auto& client = clients_.find(connection)->second;
    auto const message = client.inbox.take(now);
    if (!message) {
        return std::nullopt;
    }
    auto const request_number = message->at(0).get_uint32();
    auto state = message->at(1).get_string();
    auto const status = static_cast<Component_client_return_type>(message->at(2).get_uint32() & 0xffU);
    if (!client.is_asked || request_number != client.request_number) {
        return Client_answer{false, std::move(state), status};
    }
    client.state = state;
    return Client_answer{true, std::move(state), status};
}

}  // namespace client_state_notifier
