#include "tarq/com/exception.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"

#include <gtest/gtest.h>

namespace ximo::ap::statemanager {
namespace {

using ara::com::MethodCallProcessingMode;

class Restart : public skeleton::DSAInterfaceSkeleton {
 public:
    explicit Restart(MethodCallProcessingMode mode)
        : DSAInterfaceSkeleton(ara::com::InstanceIdentifier("DSA_Interface"), mode) {}
    com::Future<void> RequestRestart(std::uint8_t /*type*/) override { return {}; }
};

TEST(Processing_mode, Calls_are_dispatched_as_they_arrive) {
    EXPECT_EQ(static_cast<int>(MethodCallProcessingMode::kEvent), 1);
    EXPECT_NO_THROW(Restart{MethodCallProcessingMode::kEvent});
}

TEST(Processing_mode, Other_modes_are_refused) {
    EXPECT_THROW(Restart{MethodCallProcessingMode::kPoll}, tarq::com::Invalid_argument_exception);
    EXPECT_THROW(Restart{MethodCallProcessingMode::kEventSingleThread}, tarq::com::Invalid_argument_exception);
}

}  // namespace
}  // namespace ximo::ap::statemanager
