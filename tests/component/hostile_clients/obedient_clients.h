#ifndef TESTS_COMPONENT_HOSTILE_CLIENTS_OBEDIENT_CLIENTS_H
#define TESTS_COMPONENT_HOSTILE_CLIENTS_OBEDIENT_CLIENTS_H

#include "support/test_client.h"
#include "utilities/poll.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace hostile {

/// Clients that answer each request at once, from construction to destruction.
class Obedient_clients {
 public:
    Obedient_clients(std::string const& path, std::vector<std::string> const& names) {
        for (auto const& name : names) {
            clients_.emplace_back(path, name, "kOn");
        }
        thread_ = std::thread([this] { obey(); });
    }
    ~Obedient_clients() {
        stop_.second.sendl("", 1, 0);
        thread_.join();
    }
    Obedient_clients(Obedient_clients const&) = delete;
    Obedient_clients& operator=(Obedient_clients const&) = delete;

    /// A client was thrown out, or was told something that is no request.
    bool was_disturbed() const { return was_disturbed_; }

 private:
    void obey() {
        std::vector<pollfd> polled = utilities::create_pollfd(POLLIN, stop_.first);
        for (auto& client : clients_) {
            polled.push_back(utilities::create_pollfd_helper(POLLIN, client.socket()));
        }
        try {
            while (utilities::poll(polled, -1) && polled[0].revents == 0) {
                for (std::size_t i = 0; i < clients_.size(); ++i) {
                    if (polled[i + 1].revents != 0) {
                        clients_[i].obey();
                    }
                }
            }
        } catch (std::exception const&) {
            was_disturbed_ = true;
        }
    }

    std::vector<test_support::Test_client> clients_;
    std::pair<utilities::Socket, utilities::Socket> stop_{utilities::socket_pair()};
    std::atomic<bool> was_disturbed_{false};
    std::thread thread_;
};

}  // namespace hostile

#endif
