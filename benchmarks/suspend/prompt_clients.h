#ifndef BENCHMARKS_SUSPEND_PROMPT_CLIENTS_H
#define BENCHMARKS_SUSPEND_PROMPT_CLIENTS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace benchmarks {

/// One client of each group, in the order in which the groups are asked to stand by. Each answers at once, on a thread
/// of its own.
class Prompt_clients {
 public:
    static constexpr std::size_t k_count = 3;

    /// Returns when all have been asked for the state that the machine is in, which must not be that of the
    /// introduction.
    Prompt_clients();
    ~Prompt_clients();
    Prompt_clients(Prompt_clients const&) = delete;
    Prompt_clients& operator=(Prompt_clients const&) = delete;

    /// Of one client, the last request and its answer: ns of the monotonic clock.
    std::int64_t asked_at(std::size_t client) const;
    std::int64_t answered_at(std::size_t client) const;

    /// Of the first one, so far.
    int answers() const;

    /// Throws `std::runtime_error` when one has not given so many within half a minute.
    void await_answers(int answers) const;

 private:
    class Client;
    std::array<std::unique_ptr<Client>, k_count> clients_;
};

}  // namespace benchmarks

#endif
