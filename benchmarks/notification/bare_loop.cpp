#include "bare_loop.h"

#include "answering_clients.h"
#include "utilities/files.h"
#include "utilities/poll.h"
#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <sys/socket.h>

namespace benchmarks {

using utilities::Type_length_value;

namespace {

constexpr std::size_t k_wake_up = 1;  // places in the poll set
constexpr std::size_t k_first_client = 2;

utilities::Socket listen_at(std::string const& path) {
    utilities::Socket socket(AF_UNIX, SOCK_STREAM, 0);
    utilities::delete_file(path);
    auto const address = utilities::create_unix_address(path);
    if (::bind(socket.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), "bind");
    }
    socket.listen(10);
    return socket;
}

}  // namespace

Bare_loop::Bare_loop(std::string const& path, std::size_t clients) : count_(clients), listener_(listen_at(path)) {
    thread_ = std::thread([this] { serve(); });
}

Bare_loop::~Bare_loop() {
    wake_up_.second.sendl("q", 1, 0);
    thread_.join();
}

void Bare_loop::request(std::function<void()> completed) {
    completed_ = std::move(completed);
    static auto const message = utilities::serialize({Type_length_value(utilities::get_state_change_request_added())});
    wake_up_.second.sendl(message.data(), message.size(), 0);
}

void Bare_loop::serve() {
    accept_clients();
    std::size_t awaited = 0;
    for (;;) {
        utilities::poll(poll_set_, -1);
        if (poll_set_[k_wake_up].revents != 0) {
            if (!receive_wake_up()) {
                return;
            }
            send_requests();
            awaited = count_;
        }
        awaited -= read_answers();
        if (awaited == 0) {
            completed_();
        }
    }
}

/// The introduction of each client is read before anything else happens.
void Bare_loop::accept_clients() {
    poll_set_ = utilities::create_pollfd(POLLIN, listener_, wake_up_.first);
    std::array<char, 4096> introduction{};
    while (clients_.size() < count_) {
        clients_.emplace_back(::accept(listener_.get_fd(), nullptr, nullptr));
        clients_.back().recv(introduction.data(), introduction.size(), 0);
        poll_set_.push_back(utilities::create_pollfd_helper(POLLIN, clients_.back()));
    }
    is_complete_ = true;
}

bool Bare_loop::receive_wake_up() const {
    std::array<char, 4096> message{};
    return wake_up_.first.recv(message.data(), message.size(), 0) > 1;
}

void Bare_loop::send_requests() {
    auto const request =
        utilities::serialize({Type_length_value(++number_), Type_length_value(Answering_clients::k_state)});
    for (auto const& client : clients_) {
        client.sendl(request.data(), request.size(), MSG_DONTWAIT);
    }
}

std::size_t Bare_loop::read_answers() {
    std::array<char, 4096> answer{};
    std::size_t answers = 0;
    for (auto entry = poll_set_.begin() + k_first_client; entry != poll_set_.end(); ++entry) {
        if (entry->revents != 0) {
            answers += ::recv(entry->fd, answer.data(), answer.size(), MSG_DONTWAIT) > 0 ? 1 : 0;
        }
    }
    return answers;
}

}  // namespace benchmarks
