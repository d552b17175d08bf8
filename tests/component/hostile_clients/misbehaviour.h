#ifndef TESTS_COMPONENT_HOSTILE_CLIENTS_MISBEHAVIOUR_H
#define TESTS_COMPONENT_HOSTILE_CLIENTS_MISBEHAVIOUR_H

#include "hostile_connection.h"

#include <functional>
#include <string>
#include <vector>

namespace hostile {

/// One way to behave badly. `begin` is called once for each connection that was made, then `turn` over and over, as
/// long as the connection is there.
struct Misbehaviour {
    std::string name;
    std::function<void(Hostile_connection&)> begin;
    std::function<void(Hostile_connection&)> turn;
};

/// All that we could think of.
std::vector<Misbehaviour> const& all_misbehaviours();

}  // namespace hostile

#endif
