#include "statemanager/config/state_manager_json_parser.h"
#include "support/log_capture.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using nlohmann::json;
using test_support::complete_configuration;
using test_support::Log_capture;
using test_support::logged;
using test_support::reason;
using testing::ElementsAre;
using testing::IsEmpty;

/// What the file calls one list of service instances, and where it ends up.
struct Names {
    char const* maximum;
    char const* section;
    char const* member;
    std::vector<std::string> const& (State_manager_config::*list)() const;
};

class A_list_of_instances : public testing::TestWithParam<Names> {
 protected:
    bool read(json const& section) {
        auto root = complete_configuration();
        root[GetParam().section] = section;
        return read_root(root);
    }
    bool read_root(json const& root) {
        log_.clear();
        return State_manager_json_parser::read_state_manager_configuration(root, config_);
    }
    json instance(json const& name) const { return {{GetParam().member, name}}; }
    std::vector<std::string> const& list() const { return (config_.*GetParam().list)(); }
    Log_capture& log() { return log_; }

 private:
    Log_capture log_;
    State_manager_config config_;
};

TEST_P(A_list_of_instances, Is_read_in_order) {
    EXPECT_TRUE(read({instance("z"), instance("a")}));
    EXPECT_THAT(list(), ElementsAre("z", "a"));
}

TEST_P(A_list_of_instances, Warns_once_for_each_instance_beyond_the_maximum_and_succeeds) {
    auto root = complete_configuration();
    root[GetParam().maximum] = 2;
    root[GetParam().section] = {instance("1"), instance("2"), instance("3")};

    EXPECT_TRUE(read_root(root));

    EXPECT_THAT(list(), ElementsAre("1", "2"));
    EXPECT_THAT(log().messages(LogLevel::kWarn),
                ElementsAre(logged(LogLevel::kWarn, "State_manager_json_parser:",
                                   std::string(GetParam().maximum) + " exceeded! Interface not added!")));
}

TEST_P(A_list_of_instances, With_the_maximum_zero_adds_nothing_and_succeeds) {
    auto root = complete_configuration();
    root[GetParam().maximum] = 0;
    root[GetParam().section] = {instance("1"), instance("2")};

    EXPECT_TRUE(read_root(root));

    EXPECT_THAT(list(), IsEmpty());
    EXPECT_EQ(log().messages(LogLevel::kWarn).size(), 2U);
}

TEST_P(A_list_of_instances, That_is_not_set_fails_the_reading) {
    for (auto const& section : {json(), json::object(), json::array()}) {
        EXPECT_FALSE(read(section));
        EXPECT_EQ(log().messages().back(), logged(LogLevel::kDebug, "State_manager_json_parser:",
                                                  std::string(GetParam().section) + " not set in configuration file!"));
    }
}

TEST_P(A_list_of_instances, That_is_missing_fails_the_reading) {
    auto root = complete_configuration();
    root.erase(GetParam().section);

    EXPECT_FALSE(read_root(root));

    EXPECT_THAT(log().at_least(LogLevel::kDebug),
                ElementsAre(logged(LogLevel::kInfo, "State_manager_json_parser:", "Missing ", GetParam().section,
                                   "in configuration.", "caused by", reason([&] { root.at(GetParam().section); })),
                            logged(LogLevel::kDebug, "State_manager_json_parser:",
                                   std::string(GetParam().section) + " not set in configuration file!")));
}

TEST_P(A_list_of_instances, Leaves_out_an_instance_without_a_name_and_goes_on) {
    EXPECT_TRUE(read({instance("1"), json::object(), instance(2), json("3"), json(), instance("4")}));

    EXPECT_THAT(list(), ElementsAre("1", "4"));
    EXPECT_EQ(log().messages(LogLevel::kInfo).size(), 1U);   // the missing name
    EXPECT_EQ(log().messages(LogLevel::kDebug).size(), 3U);  // the number, the text and the null
}

TEST_P(A_list_of_instances, That_is_neither_empty_nor_an_array_of_objects_adds_nothing) {
    for (auto const& section : {json("1"), json(1), json(true), instance("1")}) {
        EXPECT_TRUE(read(section)) << section;
        EXPECT_THAT(list(), IsEmpty()) << section;
    }
}

INSTANTIATE_TEST_SUITE_P(Config, A_list_of_instances,
                         testing::Values(Names{"MaxNumberOfApplicationsRequestAlive", "ApplicationsRequestAliveConfig",
                                               "EcuAliveInterfaceInstance", &State_manager_config::get_apps_ecualive},
                                         Names{"MaxNumberOfApplicationsRequestNetwork",
                                               "ApplicationsRequestNetworkConfig", "NetworkAliveInterfaceInstance",
                                               &State_manager_config::get_apps_comalive},
                                         Names{"MaxNumberOfCWURequest", "CWURequestConfig", "CWUInterfaceInstance",
                                               &State_manager_config::get_apps_cwu}),
                         [](auto const& names) { return names.param.section; });

}  // namespace
}  // namespace ximo::ap::statemanager::config
