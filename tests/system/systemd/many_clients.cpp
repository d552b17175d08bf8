// Many clients of the state manager in one process: `many_clients COUNT` connects so many, prints "connected" when all
// of them are, answers what they are asked, and prints the state when all of them have been asked for it.

#include "component_client/client.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <list>
#include <map>
#include <string>
#include <vector>

#include <poll.h>

namespace {

using component_client::Answer;
using component_client::Client;
using component_client::Status;

/// Tells when something has happened to all of them.
class Count {
 public:
    explicit Count(std::size_t all) : all_(all) {}

    void add(std::string const& what) {
        if (++counts_[what] == all_) {
            counts_.erase(what);
            std::puts(what.c_str());
            std::fflush(stdout);
        }
    }

 private:
    std::size_t const all_;
    std::map<std::string, std::size_t> counts_;
};

component_client::Options options(Count& count) {
    component_client::Options options;
    options.own_thread = false;
    options.on_connection = [&count](bool is_connected) { count.add(is_connected ? "connected" : "disconnected"); };
    return options;
}

[[noreturn]] void run(std::size_t number_of_clients) {
    Count count(number_of_clients);
    std::list<Client> clients;
    std::vector<pollfd> descriptors;
    for (std::size_t number = 0; number < number_of_clients; ++number) {
        auto const& client = clients.emplace_back(
            "client " + std::to_string(number),
            [&count](std::string const& state, Answer answer) {
                answer.send(Status::succeeded);
                count.add(state);
            },
            options(count));
        descriptors.push_back({client.descriptor(), POLLIN, 0});
    }
    for (;;) {
        ::poll(descriptors.data(), descriptors.size(), -1);
        auto descriptor = descriptors.begin();
        for (auto& client : clients) {
            if ((descriptor++)->revents != 0) {
                client.dispatch();
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::atoi(argv[1]) < 1) {
        std::fputs("usage: many_clients COUNT\n", stderr);
        return 2;
    }
    try {
        run(static_cast<std::size_t>(std::atoi(argv[1])));
    } catch (std::exception const& error) {
        std::fprintf(stderr, "many_clients: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
