#include "bench/tour/actions.h"

namespace bench::tour {

// The pattern with which the machine requests the network is the one by which applications keep the ECU alive. So the
// network sleeps when the machine gives it up, although they still do, and that is the way to Post Run.
nlohmann::json configuration_changes() {
    return {{"ap_statemanager",
             {{"StateManagerNMUsage", true},
              {"DefautNMRequestPattern", {0, 0, 1, 0, 0, 0}},
              {"KnockOutTimer", 40},
              {"NmUserDataConfig", {{"CabBitsEnabled", true}}}}}};
}

std::vector<Step> steps() {
    std::vector<Step> way;
    for (auto const& life :
         {life_with_the_network(), life_of_suspends(), lives_that_end_soon(), lives_with_clients()}) {
        way.insert(way.end(), life.begin(), life.end());
    }
    return way;
}

}  // namespace bench::tour
