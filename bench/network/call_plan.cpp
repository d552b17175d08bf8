#include "bench/network/call_plan.h"

#include <algorithm>

namespace bench::network {

void Call_plan::add(std::string const& method, Call_reaction const& reaction, std::uint64_t count) {
    planned_.push_back({method, reaction, count});
}

Call_reaction Call_plan::take(std::string const& method) {
    auto const found = std::find_if(planned_.begin(), planned_.end(), [&](Planned const& planned) {
        return planned.method == "*" || planned.method == method;
    });
    if (found == planned_.end()) {
        return {};
    }
    auto const reaction = found->reaction;
    if (--found->left == 0) {
        planned_.erase(found);
    }
    return reaction;
}

}  // namespace bench::network
