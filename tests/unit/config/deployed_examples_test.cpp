#include "statemanager/config/configuration_file.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "support/log_capture.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>
#include <set>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using nlohmann::json;
using test_support::logged;
using testing::ElementsAre;

// DEPLOYED_EXAMPLES is the folder of the files that are shipped.
class A_deployed_example : public testing::TestWithParam<std::string> {
 protected:
    std::string path() const { return DEPLOYED_EXAMPLES "/" + GetParam(); }
    json document() const { return json::parse(Configuration_file(path()).read()); }
};

/// The paths of all values: "/NmUserDataConfig/ACBytes". The elements of arrays count as one.
std::set<std::string> members(json const& configuration) {
    std::set<std::string> names;
    auto const values = configuration.flatten();
    for (auto const& [path, value] : values.items()) {
        names.insert(path.substr(0, path.find_first_of("0123456789")));
    }
    return names;
}

TEST_P(A_deployed_example, Is_read_without_a_complaint) {
    test_support::Log_capture log;
    State_manager_config config;

    EXPECT_TRUE(State_manager_json_parser::parse(path(), config));

    EXPECT_THAT(log.at_least(LogLevel::kDebug),
                ElementsAre(logged(LogLevel::kInfo, "Parsing configuration file:", path())));
}

TEST_P(A_deployed_example, Shows_every_member_and_no_other) {
    EXPECT_EQ(members(document()["ap_statemanager"]), members(test_support::complete_configuration()));
}

TEST_P(A_deployed_example, Leaves_network_management_unused) {
    State_manager_config config;
    ASSERT_TRUE(State_manager_json_parser::parse(path(), config));

    EXPECT_FALSE(config.is_nm_usage_allowed());
}

TEST_P(A_deployed_example, Names_the_maximum_that_its_lists_fill) {
    State_manager_config config;
    ASSERT_TRUE(State_manager_json_parser::parse(path(), config));

    EXPECT_EQ(config.get_apps_ecualive().size(), config.get_max_apps_ecualive());
    EXPECT_EQ(config.get_apps_comalive().size(), config.get_max_apps_comalive());
    EXPECT_EQ(config.get_apps_cwu().size(), config.get_max_apps_cwu());
}

INSTANTIATE_TEST_SUITE_P(Config, A_deployed_example,
                         testing::Values("ap_statemanager.json", "ap_statemanager_hk.json", "ap_statemanager_jo.json"),
                         [](auto const& file) { return file.param.substr(0, file.param.find('.')); });

}  // namespace
}  // namespace ximo::ap::statemanager::config
