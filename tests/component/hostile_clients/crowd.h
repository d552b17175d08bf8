#ifndef TESTS_COMPONENT_HOSTILE_CLIENTS_CROWD_H
#define TESTS_COMPONENT_HOSTILE_CLIENTS_CROWD_H

#include "misbehaviour.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace hostile {

/// Many clients of every kind of misbehaviour, all at work at the same time, from construction to destruction. Whoever
/// is thrown out comes again.
class Crowd {
 public:
    Crowd(std::string path, unsigned of_each_kind);
    ~Crowd();
    Crowd(Crowd const&) = delete;
    Crowd& operator=(Crowd const&) = delete;

    /// Rounds in which every client had its turn or tried to connect, of the slowest thread.
    unsigned rounds() const;

    /// Clients that hold a connection now, about.
    unsigned connected() const { return connected_; }

 private:
    struct Client {
        Misbehaviour const* kind;
        Hostile_connection connection;
    };

    void work(std::size_t thread);
    void act(Client& client);

    static constexpr std::size_t k_threads = 3;

    std::string path_;
    std::vector<std::vector<Client>> clients_;
    std::vector<std::atomic<unsigned>> rounds_;
    std::atomic<unsigned> connected_{0};
    std::atomic<bool> stopped_{false};
    std::vector<std::thread> threads_;
};

}  // namespace hostile

#endif
