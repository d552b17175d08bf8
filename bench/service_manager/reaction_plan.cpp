#include "bench/service_manager/reaction_plan.h"

#include <algorithm>

namespace bench::service_manager {

void Reaction_plan::add(std::string const& method, std::string const& unit, Reaction const& reaction,
                        std::uint64_t count) {
    if (count > 0) {
        planned_.push_back({method, unit, reaction, count});
    }
}

Reaction Reaction_plan::take(std::string const& method, std::string const& unit) {
    auto const fits = [](std::string const& planned, std::string const& seen) {
        return planned == "*" || planned == seen;
    };
    auto const found = std::find_if(planned_.begin(), planned_.end(), [&](Planned const& planned) {
        return fits(planned.method, method) && fits(planned.unit, unit);
    });
    if (found == planned_.end()) {
        return {};
    }
    Reaction reaction = found->reaction;
    if (--found->left == 0) {
        planned_.erase(found);
    }
    return reaction;
}

}  // namespace bench::service_manager
