// What the status page is told of the network, of what applications hold, and of calls that failed.

#include "service_handler_fixture.h"
#include "status/page_writer.h"

#include <functional>
#include <sstream>

namespace ximo::ap::statemanager {
namespace {

class Told_to_the_page : public Service_handler_test {
 protected:
    Told_to_the_page() : page_(std::make_unique<status::Page>()) {
        status::put(page_->services.sending, 1U);  // as a page is made
        status::set_page(page_.get());
    }
    ~Told_to_the_page() override { status::set_page(nullptr); }

    /// What is told after a step; of the instances how often each service was requested and released.
    std::string after(std::function<void()> const& step) {
        step();
        std::ostringstream out;
        auto const& services = page_->services;
        out << (services.manager_found != 0 ? "found" : "not found") << (services.sending != 0 ? ", sending" : "")
            << (page_->driver.default_held != 0 ? ", default" : "") << ", ecu " << page_->network.ecu_state << ", cab "
            << std::hex << services.cab_pattern.bytes.words[0] << ", user " << services.user_data.bytes.words[0]
            << std::dec << ',';
        for (std::size_t i = 0; i < services.instances; ++i) {
            auto const& instance = page_->instances[i];
            out << ' ';
            for (std::size_t hold = 0; hold < instance.provided.size(); ++hold) {
                if (instance.provided[hold] != 0) {
                    out << "ECW"[hold] << instance.requests[hold] << '-' << instance.releases[hold];
                }
            }
        }
        return out.str();
    }

 private:
    std::unique_ptr<status::Page> page_;
};

TEST_F(Told_to_the_page, Is_each_step_of_applications_and_of_the_network) {
    EXPECT_EQ(after([this] { build().init(); }),
              "not found, sending, ecu 0, cab 0, user 0, E0-0 E0-0 C0-0W0-0 C0-0 W0-0");
    EXPECT_EQ(after([this] { network->be_found(); }),
              "found, sending, ecu 0, cab 0, user 80, E0-0 E0-0 C0-0W0-0 C0-0 W0-0");
    EXPECT_EQ(after([this] { sut->request_network(); }),
              "found, sending, default, ecu 0, cab 0, user 80, E0-0 E0-0 C0-0W0-0 C0-0 W0-0");
    EXPECT_EQ(after([] { ecu_alive("door").RequestAlive().get(); }),
              "found, sending, default, ecu 0, cab 0, user 80, E1-0 E0-0 C0-0W0-0 C0-0 W0-0");
    EXPECT_EQ(after([] { com_alive("radio").RequestComAlive({0x10}, 2).get(); }),
              "found, sending, default, ecu 0, cab 10, user 280, E1-0 E0-0 C1-0W0-0 C0-0 W0-0");
    EXPECT_EQ(after([] { cwu("alarm").RequestCarWakeUp(3).get(); }),
              "found, sending, default, ecu 0, cab 10, user 6c0, E1-0 E0-0 C1-0W0-0 C0-0 W1-0");
    EXPECT_EQ(after([this] {
                  network->report({0, 0, 0, 0});
              }),
              "found, sending, default, ecu 1, cab 10, user 6c0, E1-0 E0-0 C1-0W0-0 C0-0 W1-0");
    EXPECT_EQ(after([this] { sut->standby(); }), "found, ecu 1, cab 10, user 6c0, E1-0 E0-0 C1-0W0-0 C0-0 W1-0");
    EXPECT_EQ(after([this] { sut->end_standby(); }),
              "found, sending, default, ecu 1, cab 10, user 6c0, E1-0 E0-0 C1-0W0-0 C0-0 W1-0");
    EXPECT_EQ(after([] { cwu("alarm").ReleaseCarWakeUp().get(); }),
              "found, sending, default, ecu 1, cab 10, user 280, E1-0 E0-0 C1-0W0-0 C0-0 W1-1");
    EXPECT_EQ(after([] { com_alive("radio").ReleaseComAlive({0x10}).get(); }),
              "found, sending, default, ecu 1, cab 0, user 80, E1-0 E0-0 C1-1W0-0 C0-0 W1-1");
    EXPECT_EQ(after([] { ecu_alive("door").ReleaseAlive().get(); }),
              "found, sending, default, ecu 1, cab 0, user 80, E1-1 E0-0 C1-1W0-0 C0-0 W1-1");
    EXPECT_EQ(after([this] { sut->release_network(); }),
              "found, sending, ecu 1, cab 0, user 80, E1-1 E0-0 C1-1W0-0 C0-0 W1-1");
}

}  // namespace
}  // namespace ximo::ap::statemanager
