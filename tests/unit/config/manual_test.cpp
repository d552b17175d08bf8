#include "statemanager/config/configuration_file.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "support/temporary_directory.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using testing::HasSubstr;

// MANUAL_PAGE is the page about the configuration file, as its source.
std::string manual() {
    return Configuration_file(MANUAL_PAGE).read();
}

TEST(Manual_of_the_configuration, Describes_every_member) {
    auto const page = manual();

    auto const values = test_support::complete_configuration().flatten();
    for (auto const& [path, value] : values.items()) {
        auto const array = path.substr(0, path.find_first_of("0123456789"));
        auto const whole = array.back() == '/' ? array.substr(0, array.size() - 1) : array;
        EXPECT_THAT(page, HasSubstr(".It Li " + whole.substr(whole.rfind('/') + 1) + " Pq"));
    }
}

TEST(Manual_of_the_configuration, Names_the_strings_of_the_service_instances_and_the_sections) {
    for (auto const* name : {"Li EcuAliveInterfaceInstance", "Li NetworkAliveInterfaceInstance",
                             "Li CWUInterfaceInstance", ".Li SharedMemoryConfig", ".Li NmUserDataConfig"}) {
        EXPECT_THAT(manual(), HasSubstr(name));
    }
}

TEST(Manual_of_the_configuration, Shows_an_example_that_is_accepted) {
    auto const page = manual();
    auto const begin = page.find(".Bd -literal\n") + std::string(".Bd -literal\n").size();
    auto const example = page.substr(begin, page.find(".Ed", begin) - begin);
    test_support::Temporary_directory const directory;
    State_manager_config config;

    EXPECT_TRUE(State_manager_json_parser::parse(directory.write("example.json", example), config)) << example;
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
