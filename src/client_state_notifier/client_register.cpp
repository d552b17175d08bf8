#include "client_state_notifier/client_register.h"

#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <algorithm>
#include <cstring>
#include <system_error>

#include <sys/socket.h>

namespace client_state_notifier {

namespace {

/// The message that asks for a state. Only the number in its first element differs from client to client.
class Request {
 public:
    explicit Request(std::string const& state)
        : bytes_(utilities::serialize({utilities::Type_length_value(0U), utilities::Type_length_value(state)})) {}

    void send(utilities::Socket const& socket, Client_state& client) {
        client.is_asked = true;
        client.inbox.expect_one();
        std::memcpy(bytes_.data() + k_number_at, &client.request_number, sizeof client.request_number);
        socket.sendl(bytes_.data(), bytes_.size(), MSG_DONTWAIT);
    }

 private:
    static constexpr std::size_t k_number_at =
        2 * utilities::k_header_size;  // behind those of the list and the element

    utilities::Bytes bytes_;
};

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
    auto const connection = static_cast<std::size_t>(socket.get_fd());
    by_connection_.resize(std::max(by_connection_.size(), connection + 1));
    auto const added = clients_.emplace(
        std::move(socket), Client_state{name, utilities::get_unknown_state(), 0, "", false, std::move(inbox)});
    by_connection_[connection] = &*added.first;
}

std::string Client_register::remove(int connection) {
    base::Lock_guard const lock(mutex_);
    auto name = at(connection).second.name;
    clients_.erase(clients_.find(connection));
    return name;
}

void Client_register::clear() {
    base::Lock_guard const lock(mutex_);
    clients_.clear();
    by_connection_.clear();
}

std::string Client_register::name_of(int connection) const {
    base::Lock_guard const lock(mutex_);
    return at(connection).second.name;
}

std::string Client_register::requested_state_of(int connection) const {
    base::Lock_guard const lock(mutex_);
    return at(connection).second.requested_state;
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
    Request request(state);
    base::Lock_guard const lock(mutex_);
    auto& [socket, client] = at(connection);
    client.requested_state = state;
    request.send(socket, client);
}

std::map<int, std::string> Client_register::send_next_request(std::vector<int> const& connections,
                                                              std::string const& state) {
    std::map<int, std::string> failures;
    Request request(state);
    base::Lock_guard const lock(mutex_);
    for (int const connection : connections) {
        auto& [socket, client] = at(connection);
        client.requested_state = state;
        ++client.request_number;
        try {
            request.send(socket, client);
        } catch (std::system_error const& error) {
            failures.emplace(connection, error.what());
        }
    }
    return failures;
}

void Client_register::receive(int connection) {
    base::Lock_guard const lock(mutex_);
    auto& [socket, client] = at(connection);
    client.inbox.receive(socket);
}

std::optional<Client_answer> Client_register::take_answer(int connection, Inbox::Clock::time_point now) {
    base::Lock_guard const lock(mutex_);
    auto& client = at(connection).second;
    if (!client.inbox.take(message_, now)) {
        return std::nullopt;
    }
    auto const request_number = message_.at(0).get_uint32();
    auto state = message_.at(1).get_string();
    auto const status = static_cast<Component_client_return_type>(message_.at(2).get_uint32() & 0xffU);
    if (!client.is_asked || request_number != client.request_number) {
        return Client_answer{false, std::move(state), status};
    }
    client.state = state;
    return Client_answer{true, std::move(state), status};
}

}  // namespace client_state_notifier
