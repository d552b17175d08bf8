#include "story.h"

#include <array>

namespace bench::vehicle {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Instances : public Story {};

/// A list of service instances in the configuration.
struct List {
    char const* maximum;
    char const* section;
    char const* member;
};

constexpr List k_list_of_ecu_alive{"MaxNumberOfApplicationsRequestAlive", "ApplicationsRequestAliveConfig",
                                   "EcuAliveInterfaceInstance"};
constexpr List k_list_of_com_alive{"MaxNumberOfApplicationsRequestNetwork", "ApplicationsRequestNetworkConfig",
                                   "NetworkAliveInterfaceInstance"};
constexpr List k_list_of_car_wake_up{"MaxNumberOfCWURequest", "CWURequestConfig", "CWUInterfaceInstance"};
constexpr std::array<List, 3> k_lists{k_list_of_ecu_alive, k_list_of_com_alive, k_list_of_car_wake_up};

nlohmann::json instances_of(List const& list, std::vector<std::string> const& names) {
    auto instances = nlohmann::json::array();
    for (auto const& name : names) {
        instances.push_back({{list.member, name}});
    }
    return instances;
}

/// The same story told of each list.
class Instances_of_a_list : public Story, public testing::WithParamInterface<List> {};

void PrintTo(List const& list, std::ostream* out) {
    *out << list.section;
}

TEST_P(Instances_of_a_list, End_the_start_with_status_255_when_one_has_a_name_that_is_none) {
    settings()[GetParam().section] = instances_of(GetParam(), {"a*b"});
    start();
    EXPECT_TRUE(ends_with(255));
    EXPECT_THAT(texts(Kind::log), AllOf(Contains(StartsWith("AP_StateManger is aborted: ")),
                                        Not(Contains("AP_StateManger daemon shutting down"))));
    EXPECT_THAT(texts(Kind::state_word), IsEmpty());
    EXPECT_THAT(texts(Kind::notification), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Lists, Instances_of_a_list, testing::ValuesIn(k_lists));

TEST_F(Instances, May_be_none_at_all) {
    for (auto const& list : k_lists) {
        settings()[list.maximum] = 0;
    }
    start_and_run();
    machine->signal_daemon(SIGTERM);
    EXPECT_TRUE(ends_with(0));
}

}  // namespace
}  // namespace bench::vehicle
