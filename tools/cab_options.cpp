#include "tools/cab_options.h"

#include "base/hex.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace statectl {

services::Octets cab_bits(Cab_options const& options) {
    auto bits = base::from_hex(options.bits).value_or(services::Octets());
    for (auto const cab : options.cabs) {
        bits.resize(std::max<std::size_t>(bits.size(), cab / 8 + 1));
        bits[cab / 8] = static_cast<std::uint8_t>(bits[cab / 8] | 1U << cab % 8);
    }
    return bits;
}

void add_cab_options(CLI::App& command, Cab_options& options) {
    constexpr unsigned k_highest_cab = 8 * 1024 - 1;
    command.add_option("--bits", options.bits, "CAB bits as hexadecimal bytes, e.g. \"00 00 01\"")
        ->check([](std::string const& text) { return base::from_hex(text) ? "" : "not hexadecimal bytes: " + text; });
    command.add_option("--cab", options.cabs, "Number of a CAB bit, from 0; may be repeated")
        ->check(CLI::Range(0U, k_highest_cab));
}

void add_ac_option(CLI::App& command, Cab_options& options) {
    command.add_option("--ac", options.ac_number, "Number of the AC bit, 1 to 16; 0 for none")
        ->check(CLI::Range(0, 255))
        ->capture_default_str();
}

}  // namespace statectl
