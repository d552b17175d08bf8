#include "prompt_clients.h"

#include "bench/json_lines/clock.h"
#include "utilities/messages.h"
#include "utilities/protocol.h"
#include "utilities/socket.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include <sys/socket.h>

namespace benchmarks {

namespace {

using utilities::Type_length_value;

constexpr int k_patience_s = 30;

}  // namespace

class Prompt_clients::Client {
 public:
    explicit Client(std::string const& name) {
        socket_.try_connect(utilities::create_unix_address(utilities::get_socket_path()), stop_.first);
        utilities::send_type_length_values(socket_, {Type_length_value(utilities::get_protocol_version_one()),
                                                     Type_length_value(name), Type_length_value("kPrepSD")});
        thread_ = std::thread([this] { answer_requests(); });
    }
    ~Client() {
        ::shutdown(socket_.get_fd(), SHUT_RDWR);
        thread_.join();
    }
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    std::int64_t asked_at() const { return asked_at_; }
    std::int64_t answered_at() const { return answered_at_; }
    int answers() const { return answers_; }

 private:
    void answer_requests() {
        try {
            for (;;) {
                auto const request = utilities::receive_type_length_values(socket_);
                asked_at_ = bench::monotonic_ns();
                answered_at_ = bench::monotonic_ns();
                utilities::send_type_length_values(socket_, {request.at(0), request.at(1), Type_length_value(0U)});
                ++answers_;
            }
        } catch (std::exception const&) {  // NOLINT(bugprone-empty-catch): the connection has ended
        }
    }

    std::pair<utilities::Socket, utilities::Socket> stop_{utilities::socket_pair()};
    utilities::Socket socket_{AF_UNIX, SOCK_STREAM, 0};
    std::atomic<std::int64_t> asked_at_{0};
    std::atomic<std::int64_t> answered_at_{0};
    std::atomic<int> answers_{0};
    std::thread thread_;
};

Prompt_clients::Prompt_clients()
    : clients_{std::make_unique<Client>("diag::dcm"), std::make_unique<Client>("application"),
               std::make_unique<Client>("diag::dem")} {
    await_answers(1);
}

Prompt_clients::~Prompt_clients() = default;

std::int64_t Prompt_clients::asked_at(std::size_t client) const {
    return clients_.at(client)->asked_at();
}

std::int64_t Prompt_clients::answered_at(std::size_t client) const {
    return clients_.at(client)->answered_at();
}

int Prompt_clients::answers() const {
    return clients_.front()->answers();
}

void Prompt_clients::await_answers(int answers) const {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(k_patience_s);
    while (std::any_of(clients_.begin(), clients_.end(),
                       [&](auto const& client) { return client->answers() < answers; })) {
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("a client was not asked");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace benchmarks
