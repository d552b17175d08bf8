#ifndef BENCH_NETWORK_OPTIONS_H
#define BENCH_NETWORK_OPTIONS_H

#include "bench/network/network_player.h"

#include <optional>
#include <string>
#include <vector>

namespace bench::network {

inline constexpr std::uint16_t k_usual_port = 30500;

/// What the words on the command line ask for.
struct Node_options {
    Network_options network;
    std::string capture;                 ///< file to begin a capture in; empty for none
    std::optional<std::string> offered;  ///< instance of the services that are offered; nothing for a node without
    bool tells_first_state{true};        ///< a subscriber gets the network state before it has changed
};

/// Throws `std::invalid_argument`, whose text says what is wrong.
Node_options parse_options(std::vector<std::string> const& words);

/// What to write when they were wrong.
extern char const* const k_usage;

}  // namespace bench::network

#endif
