#include "bench/application/commands.h"

#include "support/fake_binding.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace bench::application {
namespace {

namespace skeletons = ximo::ap::statemanager::skeleton;
using ara::com::InstanceIdentifier;
using ara::com::MethodCallProcessingMode;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using ximo::com::Future;
using Calls = std::vector<std::string>;

Future<void> done() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

struct Car_wake_up : skeletons::StateManagementCWUInterfaceSkeleton {
    explicit Car_wake_up(Calls& calls)
        : StateManagementCWUInterfaceSkeleton(InstanceIdentifier("7"), MethodCallProcessingMode::kEvent),
          calls_(calls) {}
    ~Car_wake_up() override { StopOfferService(); }
    Future<void> ReleaseCarWakeUp() override {
        calls_.emplace_back("release cwu");
        return done();
    }
    Future<void> RequestCarWakeUp(std::uint8_t ac_number) override {
        calls_.push_back("request cwu " + std::to_string(ac_number));
        return done();
    }

 private:
    Calls& calls_;
};

/// Application 7, with one service offered to it.
class Application_commands : public testing::Test {
 protected:
    Application_commands() {
        car_wake_up.OfferService();
        sut.emplace("7", [this](Means means, bool is_offered) {
            changes.push_back((is_offered ? "+" : "-") + std::string(name(means)));
        });
        add_commands(table, *sut);
    }

    json command(json const& message) { return table.answer(message.dump()); }

    test_support::Fake_binding binding;
    Calls calls;
    Car_wake_up car_wake_up{calls};
    std::vector<std::string> changes;
    std::optional<Application> sut;
    Command_table table;
};

TEST_F(Application_commands, Tell_why_a_call_failed) {
    car_wake_up.StopOfferService();
    auto const answer = command({{"do", "request"}, {"what", "cwu"}, {"wait_ms", 0}});
    EXPECT_EQ(answer["ok"], false);
    EXPECT_EQ(answer["error"], "Service not available exception");
    car_wake_up.OfferService();
    EXPECT_EQ(command({{"do", "request"}, {"what", "cwu"}})["ok"], true);
}

TEST_F(Application_commands, That_are_wrong_call_nobody) {
    for (json const& wrong : {
             json{{"do", "request"}},
             {{"do", "request"}, {"what", "everything"}},
             {{"do", "request"}, {"what", "com_alive"}},
             {{"do", "request"}, {"what", "com_alive"}, {"bits", "1"}},
             {{"do", "request"}, {"what", "com_alive"}, {"bits", "01"}, {"ac", 256}},
             {{"do", "request"}, {"what", "ecu_alive"}, {"ac", 1}},
             {{"do", "request"}, {"what", "cwu"}, {"bits", "01"}},
             {{"do", "request"}, {"what", "cwu"}, {"wait_ms", -1}},
             {{"do", "release"}, {"what", "cwu"}, {"ac", 1}},
             {{"do", "restart"}},
             {{"do", "restart"}, {"type", 256}},
         }) {
        auto const answer = command(wrong);
        EXPECT_EQ(answer["ok"], false) << wrong;
        EXPECT_NE(answer["error"], "Service not available exception") << wrong;
    }
    EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
}  // namespace bench::application
