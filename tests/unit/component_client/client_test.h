#ifndef TESTS_COMPONENT_CLIENT_CLIENT_TEST_H
#define TESTS_COMPONENT_CLIENT_CLIENT_TEST_H

#include "component_client/client.h"
#include "support/played_server.h"
#include "support/temporary_directory.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <gmock/gmock.h>

namespace component_client {

using test_support::Hello;
using test_support::k_patience;
using test_support::Played_peer;
using test_support::Played_server;
using test_support::Reply;

/// Things on their way from one thread to another; taking throws when nothing comes in time.
template <class Item>
class Mailbox {
 public:
    void put(Item item) {
        std::lock_guard const lock(mutex_);
        items_.push_back(std::move(item));
        filled_.notify_all();
    }

    Item take() {
        std::unique_lock lock(mutex_);
        if (!filled_.wait_for(lock, k_patience, [this] { return !items_.empty(); })) {
            throw std::runtime_error("nothing came");
        }
        auto item = std::move(items_.front());
        items_.pop_front();
        return item;
    }

 private:
    std::mutex mutex_;
    std::condition_variable filled_;
    std::deque<Item> items_;
};

/// A state manager to connect to, and handlers.
class Client_test : public testing::Test {
 protected:
    Client_test() { options.socket_path = path; }

    Request_handler keep_answers() {
        return [this](std::string const& /*state*/, Answer answer) { answers.put(std::move(answer)); };
    }
    static void succeed(std::string const& /*state*/, Answer answer) { answer.send(Status::succeeded); }

    Client connected_client(Request_handler handler) {
        Client client("me", std::move(handler), options);
        peer.emplace(server->accept());
        peer->hello();
        return client;
    }

    test_support::Temporary_directory directory;
    std::string const path{directory.file("socket")};
    std::optional<Played_server> server{std::in_place, path};
    std::optional<Played_peer> peer;
    Options options;
    Mailbox<Answer> answers;
};

}  // namespace component_client

#endif
