#ifndef TESTS_COMPONENT_NOTIFICATION_SEQUENCES_PLAYED_CLIENTS_H
#define TESTS_COMPONENT_NOTIFICATION_SEQUENCES_PLAYED_CLIENTS_H

#include "support/test_client.h"

#include <functional>
#include <list>
#include <ostream>
#include <string>
#include <vector>

namespace sequences {

/// How a client takes what it is asked for.
enum class Manner { obeys, fails, is_silent, disconnects };

inline std::ostream& operator<<(std::ostream& out, Manner manner) {
    char const* const words[] = {"obeys", "fails", "is_silent", "disconnects"};
    return out << words[static_cast<int>(manner)];
}

/// Who was asked for what.
struct Asked {
    std::string name;
    std::string state;
};
inline bool operator==(Asked const& left, Asked const& right) {
    return left.name == right.name && left.state == right.state;
}
inline std::ostream& operator<<(std::ostream& out, Asked const& asked) {
    return out << asked.name << " for " << asked.state;
}

/// Clients that a test plays on its own thread: they do nothing but in `act`.
class Played_clients {
 public:
    /// Called when a client has been asked, before it answers.
    std::function<void(Asked const&)> before_answer = [](Asked const&) {};

    void add(std::string const& path, std::string const& name, Manner manner = Manner::obeys) {
        clients_.push_back({name, manner, test_support::Test_client(path, name, "kOn")});
    }

    /// Each client takes what has arrived for it.
    void act() {
        for (auto client = clients_.begin(); client != clients_.end();) {
            auto const current = client++;
            if (current->connection.has_input() && !react(*current)) {
                clients_.erase(current);
            }
        }
    }

    /// In the order of time.
    std::vector<Asked> const& asked() const { return asked_; }

    /// The state that a client was asked for last.
    std::string last_asked_of(std::string const& name) const {
        std::string state;
        for (auto const& asked : asked_) {
            state = asked.name == name ? asked.state : state;
        }
        return state;
    }

 private:
    struct Client {
        std::string name;
        Manner manner;
        test_support::Test_client connection;
    };

    /// False when the client goes.
    bool react(Client& client) {
        auto const request = client.connection.receive();
        asked_.push_back({client.name, request.state});
        before_answer(Asked(asked_.back()));
        if (client.manner == Manner::obeys) {
            client.connection.answer(request.number, request.state);
        } else if (client.manner == Manner::fails) {
            client.connection.answer(request.number, "kOn", 1);
        }
        return client.manner != Manner::disconnects;
    }

    std::list<Client> clients_;
    std::vector<Asked> asked_;
};

}  // namespace sequences

#endif
