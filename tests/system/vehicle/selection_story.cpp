#include "story.h"

#include <string>
#include <utility>

namespace bench::vehicle {
namespace {

class Selection : public Story, public testing::WithParamInterface<std::pair<char const*, char const*>> {};

TEST_P(Selection, Takes_the_configuration_of_the_host) {
    options.host_name = GetParam().first;
    options.configuration_name = GetParam().second;
    start_and_run();
    EXPECT_TRUE(logs("Configuration for hostname:  " + options.host_name));
    EXPECT_TRUE(logs("Parsing configuration file: /etc/adaptive/" + options.configuration_name));
}

INSTANTIATE_TEST_SUITE_P(Hosts, Selection,
                         testing::Values(std::pair{"housekeeping-vm", "ap_statemanager_hk.json"},
                                         std::pair{"java-vm", "ap_statemanager_jo.json"},
                                         std::pair{"adaptive-apps-vm", "ap_statemanager.json"},
                                         std::pair{"qemuarm64", "ap_statemanager.json"},
                                         std::pair{"some-other-host", "ap_statemanager.json"},
                                         std::pair{"Java-VM", "ap_statemanager.json"}));

}  // namespace
}  // namespace bench::vehicle
