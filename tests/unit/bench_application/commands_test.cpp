#include "bench/application/commands.h"

#include "support/fake_binding.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"
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
using Octets = std::vector<std::uint8_t>;

Future<void> done() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

struct Ecu_alive : skeletons::StateManagementAliveInterfaceSkeleton {
    explicit Ecu_alive(Calls& calls)
        : StateManagementAliveInterfaceSkeleton(InstanceIdentifier("7"), MethodCallProcessingMode::kEvent),
          calls_(calls) {}
    ~Ecu_alive() override { StopOfferService(); }
    Future<void> ReleaseAlive() override { return note("release ecu"); }
    Future<void> RequestAlive() override { return note("request ecu"); }

 private:
    Future<void> note(char const* what) {
        calls_.emplace_back(what);
        return done();
    }
    Calls& calls_;
};

struct Com_alive : skeletons::StateManagementComAliveInterfaceSkeleton {
    explicit Com_alive(Calls& calls)
        : StateManagementComAliveInterfaceSkeleton(InstanceIdentifier("7"), MethodCallProcessingMode::kEvent),
          calls_(calls) {}
    ~Com_alive() override { StopOfferService(); }
    Future<void> ReleaseComAlive(Octets const& bits) override {
        calls_.push_back("release com " + testing::PrintToString(bits));
        return done();
    }
    Future<void> RequestComAlive(Octets const& bits, std::uint8_t ac_number) override {
        calls_.push_back("request com " + testing::PrintToString(bits) + ' ' + std::to_string(ac_number));
        return done();
    }

 private:
    Calls& calls_;
};

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

struct Restart : skeletons::DSAInterfaceSkeleton {
    explicit Restart(Calls& calls)
        : DSAInterfaceSkeleton(InstanceIdentifier("DSA_Interface"), MethodCallProcessingMode::kEvent), calls_(calls) {}
    ~Restart() override { StopOfferService(); }
    Future<void> RequestRestart(std::uint8_t type) override {
        calls_.push_back("restart " + std::to_string(type));
        return done();
    }

 private:
    Calls& calls_;
};

/// Application 7, with all services offered to it.
class Application_commands : public testing::Test {
 protected:
    Application_commands() {
        ecu_alive.OfferService();
        com_alive.OfferService();
        car_wake_up.OfferService();
        restart.OfferService();
        sut.emplace("7", [this](Means means, bool is_offered) {
            changes.push_back((is_offered ? "+" : "-") + std::string(name(means)));
        });
        add_commands(table, *sut);
    }

    json command(json const& message) { return table.answer(message.dump()); }

    test_support::Fake_binding binding;
    Calls calls;
    Ecu_alive ecu_alive{calls};
    Com_alive com_alive{calls};
    Car_wake_up car_wake_up{calls};
    Restart restart{calls};
    std::vector<std::string> changes;
    std::optional<Application> sut;
    Command_table table;
};

TEST_F(Application_commands, Reach_the_services_of_the_applications_instance) {
    EXPECT_EQ(command({{"do", "request"}, {"what", "ecu_alive"}})["ok"], true);
    command({{"do", "release"}, {"what", "ecu_alive"}});
    command({{"do", "request"}, {"what", "com_alive"}, {"bits", "00 0a"}, {"ac", 16}});
    command({{"do", "release"}, {"what", "com_alive"}, {"bits", "0a"}});
    command({{"do", "request"}, {"what", "cwu"}, {"ac", 3}});
    command({{"do", "release"}, {"what", "cwu"}});
    command({{"do", "restart"}, {"type", 5}});
    Octets const requested{0, 0x0a};
    Octets const released{0x0a};
    EXPECT_THAT(
        calls,
        ElementsAre("request ecu", "release ecu", "request com " + testing::PrintToString(requested) + " 16",
                    "release com " + testing::PrintToString(released), "request cwu 3", "release cwu", "restart 5"));
}

TEST_F(Application_commands, Have_no_number_unless_told) {
    command({{"do", "request"}, {"what", "cwu"}});
    EXPECT_THAT(calls, ElementsAre("request cwu 0"));
}

TEST_F(Application_commands, Tell_why_a_call_failed) {
    car_wake_up.StopOfferService();
    auto const answer = command({{"do", "request"}, {"what", "cwu"}, {"wait_ms", 0}});
    EXPECT_EQ(answer["ok"], false);
    EXPECT_EQ(answer["error"], "Service not available exception");
    car_wake_up.OfferService();
    EXPECT_EQ(command({{"do", "request"}, {"what", "cwu"}})["ok"], true);
}

TEST_F(Application_commands, Tell_which_services_come_and_go) {
    EXPECT_THAT(changes, ElementsAre("+ecu_alive", "+com_alive", "+cwu"));
    com_alive.StopOfferService();
    com_alive.OfferService();
    EXPECT_THAT(changes, ElementsAre("+ecu_alive", "+com_alive", "+cwu", "-com_alive", "+com_alive"));
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
        EXPECT_EQ(command(wrong)["ok"], false) << wrong;
    }
    EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
}  // namespace bench::application
