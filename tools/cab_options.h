#ifndef TOOLS_CAB_OPTIONS_H
#define TOOLS_CAB_OPTIONS_H

#include "services/user_data_names.h"

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace statectl {

/// What commands are told that hold bits of the network.
struct Cab_options {
    std::string bits;
    std::vector<unsigned> cabs;
    std::uint8_t ac_number{0};
};

/// The bits of both options together.
services::Octets cab_bits(Cab_options const& options);

/// Adds --bits and --cab, and --ac.
void add_cab_options(CLI::App& command, Cab_options& options);
void add_ac_option(CLI::App& command, Cab_options& options);

}  // namespace statectl

#endif
