// Applications, network and driver at the same time: queries that wait for nobody, and everything at once.

#include "service_handler_fixture.h"

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace ximo::ap::statemanager {
namespace {

class Threads : public Service_handler_test {
 protected:
    /// With services that are called directly, because the fake binding has one thread only.
    void build_with_services_at_hand() {
        auto client = std::make_unique<test_support::Fake_network_management>(actions);
        network = client.get();
        auto radio_com_alive = std::make_unique<State_manager_com_alive_interface>("radio");
        auto phone_com_alive = std::make_unique<State_manager_com_alive_interface>("phone");
        auto alarm_cwu = std::make_unique<State_manager_cwu_interface>("alarm");
        radio = radio_com_alive.get();
        phone = phone_com_alive.get();
        alarm = alarm_cwu.get();
        Service_handler::Com_alive_services com_alive;
        com_alive.push_back(std::move(radio_com_alive));
        com_alive.push_back(std::move(phone_com_alive));
        Service_handler::Cwu_services cwu;
        cwu.push_back(std::move(alarm_cwu));
        sut = std::make_unique<Service_handler>(configuration, std::move(client), std::move(com_alive), std::move(cwu));
        sut->init();
    }

    State_manager_com_alive_interface_abstract* radio{nullptr};
    State_manager_com_alive_interface_abstract* phone{nullptr};
    State_manager_cwu_interface_abstract* alarm{nullptr};
};

TEST_F(Threads, Let_no_query_wait_for_a_slow_network_manager) {
    build_with_services_at_hand();
    network->be_found();
    std::atomic<bool> asked{false};
    std::atomic<bool> answered{false};
    network->meanwhile = [&] {
        if (asked.exchange(true)) {
            return;
        }
        while (!answered) {
            std::this_thread::yield();
        }
    };
    std::thread application([this] { radio->RequestComAlive({0x02}, 1); });
    while (!asked) {
        std::this_thread::yield();
    }

    // The application holds the mutex until all of these have answered, and the states have been served.
    auto served = std::async(std::launch::async, [this] {
        sut->request_network();
        sut->release_network();
    });
    EXPECT_EQ(served.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_TRUE(sut->nm_interface_available());
    EXPECT_TRUE(sut->apps_keep_com_alive());
    EXPECT_FALSE(sut->apps_keep_ecu_alive());
    EXPECT_TRUE(sut->is_network_in_use());
    EXPECT_FALSE(sut->ecu_in_sleep_mode());
    network->report({});
    network->report({});
    EXPECT_TRUE(sut->ecu_in_sleep_mode());

    answered = true;
    application.join();
}

TEST_F(Threads, Do_everything_at_once_and_agree_in_the_end) {
    constexpr int k_rounds = 200;
    build_with_services_at_hand();
    auto const repeat = [](auto action) {
        return std::thread([action] {
            for (int round = 0; round < k_rounds; ++round) {
                action();
            }
        });
    };

    std::vector<std::thread> threads;
    threads.push_back(repeat([this] {
        radio->RequestComAlive({0x06}, 1);
        radio->ReleaseComAlive({0x06});
    }));
    threads.push_back(repeat([this] {
        phone->RequestComAlive({0x0C}, 2);
        phone->ReleaseComAlive({0x04});
    }));
    threads.push_back(repeat([this] {
        alarm->RequestCarWakeUp(3);
        alarm->ReleaseCarWakeUp();
    }));
    threads.push_back(repeat([this] {
        sut->ecu_alive_request("door");
        sut->ecu_alive_release("door");
    }));
    threads.push_back(repeat([this] {
        network->report({0x01});
        network->report({0x00});
    }));
    threads.emplace_back([this] { network->be_found(); });
    for (int round = 0; round < k_rounds; ++round) {  // the driver
        sut->request_network();
        sut->release_network();
        sut->standby();
        sut->is_network_in_use();
        sut->ecu_in_sleep_mode();
        sut->end_standby();
    }
    for (auto& thread : threads) {
        thread.join();
    }

    EXPECT_TRUE(sut->nm_interface_available());
    EXPECT_TRUE(sut->apps_keep_com_alive());  // phone keeps 0x08
    EXPECT_FALSE(sut->ecu_in_sleep_mode());
    forget();
    sut->end_standby();
    EXPECT_THAT(actions, ElementsAre("request 01 00 00 00 ", "request 08 00 00 00 ", "user data 80 02 00 08 00 00 "));
    sut->deinit();
    EXPECT_FALSE(binding.is_offered(k_com_alive, "radio"));
}

}  // namespace
}  // namespace ximo::ap::statemanager
