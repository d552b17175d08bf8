#include "client_state_notifier/client_register.h"

#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <algorithm>

#include <sys/socket.h>

namespace client_state_notifier {

using Lock = base::Lock_guard<base::Mutex>;

namespace {

void send(utilities::Socket const& socket, Client_state const& client) {
    auto const message = utilities::serialize(
        {utilities::Type_length_value(client.request_number), utilities::Type_length_value(client.requested_state)});
    socket.sendl(message.data(), message.size(), MSG_DONTWAIT);
}

}  // namespace

std::vector<std::pair<std::string, std::string>> Client_register::list() const {
    Lock const lock(mutex_);
    std::vector<std::pair<std::string, std::string>> clients;
    clients.reserve(clients_.size());
    for (auto const& [socket, client] : clients_) {
        clients.emplace_back(client.name, client.state);
    }
    return clients;
}

std::string Client_register::current_state() const {
    Lock const lock(mutex_);
    return current_state_;
}

void Client_register::set_current_state(std::string const& state) {
    Lock const lock(mutex_);
    current_state_ = state;
}

bool Client_register::has(std::string const& name) const {
    Lock const lock(mutex_);
    return std::any_of(clients_.begin(), clients_.end(),
                       [&](auto const& client) { return client.second.name == name; });
}

std::size_t Client_register::size() const {
    Lock const lock(mutex_);
    return clients_.size();
}

void Client_register::add(utilities::Socket socket, std::string const& name, Inbox inbox) {
    Lock const lock(mutex_);
    clients_.emplace(std::move(socket), Client_state{name, utilities::get_unknown_state(), 0, "", std::move(inbox)});
}

std::string Client_register::remove(int connection) {
    Lock const lock(mutex_);
    auto const client = clients_.find(connection);
    auto name = client->second.name;
    clients_.erase(client);
    return name;
}

void Client_register::clear() {
    Lock const lock(mutex_);
    clients_.clear();
}

std::string Client_register::name_of(int connection) const {
    Lock const lock(mutex_);
    return clients_.find(connection)->second.name;
}

std::vector<std::pair<int, std::string>> Client_register::select(Client_predicate const& predicate) const {
    std::vector<std::pair<int, std::string>> clients;
    {
        Lock const lock(mutex_);
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
    Lock const lock(mutex_);
    for (auto const& [socket, client] : clients_) {
        poll_set.push_back({socket.get_fd(), POLLIN, 0});
    }
}

void Client_register::send_request(int connection, std::string const& state) {
    Lock const lock(mutex_);
    auto& [socket, client] = *clients_.find(connection);
    client.requested_state = state;
    client.inbox.expect_one();
    send(socket, client);
}

void Client_register::send_next_request(int connection, std::string const& state) {
    Lock const lock(mutex_);
    auto& [socket, client] = *clients_.find(connection);
    client.requested_state = state;
    ++client.request_number;
    client.inbox.expect_one();
    send(socket, client);
}

void Client_register::receive(int connection) {
    Lock const lock(mutex_);
    auto& [socket, client] = *clients_.find(connection);
    client.inbox.receive(socket);
}

std::optional<utilities::Type_length_values> Client_register::take_message(int connection) {
    Lock const lock(mutex_);
    return clients_.find(connection)->second.inbox.take();
}

bool Client_register::update(int connection, std::uint32_t request_number, std::string const& state) {
    Lock const lock(mutex_);
    auto& client = clients_.find(connection)->second;
    if (client.request_number != request_number) {
        return false;
    }
    client.state = state;
    return true;
}

}  // namespace client_state_notifier
