#include "crowd.h"

#include <algorithm>
#include <chrono>

namespace hostile {

namespace {

// Between two rounds of a thread: the crowd is to keep the server busy and not the processors.
constexpr std::chrono::milliseconds k_breath{2};

}  // namespace

Crowd::Crowd(std::string path, unsigned of_each_kind)
    : path_(std::move(path)), clients_(k_threads), rounds_(k_threads) {
    unsigned number = 0;
    for (unsigned i = 0; i < of_each_kind; ++i) {
        for (auto const& kind : all_misbehaviours()) {
            auto& clients = clients_[number % k_threads];
            clients.push_back({&kind, {}});
            clients.back().connection.number = number++;
        }
    }
    for (std::size_t thread = 0; thread < k_threads; ++thread) {
        threads_.emplace_back([this, thread] { work(thread); });
    }
}

Crowd::~Crowd() {
    stopped_ = true;
    for (auto& thread : threads_) {
        thread.join();
    }
}

unsigned Crowd::rounds() const {
    return *std::min_element(rounds_.begin(), rounds_.end());
}

void Crowd::work(std::size_t thread) {
    while (!stopped_) {
        for (auto& client : clients_[thread]) {
            act(client);
        }
        ++rounds_[thread];
        std::this_thread::sleep_for(k_breath);
    }
}

void Crowd::act(Client& client) {
    auto& connection = client.connection;
    bool const was_closed = connection.is_closed();
    if (was_closed) {
        if (connection.connect(path_)) {
            client.kind->begin(connection);
        }
    } else {
        client.kind->turn(connection);
        ++connection.turns;
    }
    if (was_closed != connection.is_closed()) {
        connected_ += was_closed ? 1U : -1U;
    }
}

}  // namespace hostile
