#ifndef BENCH_CLIENT_BEHAVIOUR_H
#define BENCH_CLIENT_BEHAVIOUR_H

#include <chrono>
#include <optional>
#include <string>

namespace bench::client {

/// How a client takes the requests that come to it.
enum class Manner {
    well,      ///< answers at once
    late,      ///< answers after its delay
    silent,    ///< keeps the answer until it behaves otherwise
    failing,   ///< answers at once that it failed, and stays in its state
    crashing,  ///< is killed by the next request
};

/// How a client takes its requests, until it is told otherwise.
struct Behaviour {
    Manner manner{Manner::well};
    std::chrono::milliseconds delay{1'000};  ///< of a late one
    int status{1};                           ///< of a failing one
};

std::string name(Manner manner);

/// Nothing for a name that is none.
std::optional<Manner> manner_named(std::string const& name);

}  // namespace bench::client

#endif
