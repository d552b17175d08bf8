#include "story.h"

#include <ostream>
#include <string>

namespace bench::vehicle {
namespace {

/// A host and the configuration file that it takes.
struct Host {
    char const* name;
    char const* file;
};

void PrintTo(Host const& host, std::ostream* out) {
    *out << host.name;
}

class Selection : public Story, public testing::WithParamInterface<Host> {};

TEST_P(Selection, Takes_the_configuration_of_the_host) {
    options.host_name = GetParam().name;
    options.configuration_name = GetParam().file;
    start_and_run();
    EXPECT_TRUE(logs("Configuration for hostname:  " + options.host_name));
    EXPECT_TRUE(logs("Parsing configuration file: /etc/adaptive/" + options.configuration_name));
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, Selection,
    testing::Values(Host{"housekeeping-vm", "ap_statemanager_hk.json"}, Host{"java-vm", "ap_statemanager_jo.json"},
                    Host{"adaptive-apps-vm", "ap_statemanager.json"}, Host{"qemuarm64", "ap_statemanager.json"},
                    Host{"some-other-host", "ap_statemanager.json"}, Host{"Java-VM", "ap_statemanager.json"}));

}  // namespace
}  // namespace bench::vehicle
