#include "main/termination.h"

#include "support/fake_neighbours.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <chrono>
#include <csignal>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;

class Termination : public testing::Test {
 protected:
    Termination() { configuration.set_smw_update_status_path(files.file("status")); }
    ~Termination() override { g_state_manager.reset(nullptr); }

    /// Gives something that lives as long as the driver.
    std::weak_ptr<void> hold_a_state_manager() {
        auto const part = std::make_shared<test_support::Fake_execution_management>();
        g_state_manager.reset(
            std::make_unique<ximo::ap::statemanager::State_manager>(configuration, nullptr, part, nullptr, nullptr));
        return part;
    }

    static bool is_held() {
        bool held = false;
        g_state_manager.with([&held](auto& /*manager*/) { held = true; });
        return held;
    }

    test_support::Log_capture log;
    test_support::Temporary_directory files;
    ximo::ap::statemanager::config::State_manager_config configuration;
};

TEST_F(Termination, Says_the_same_for_each_of_its_signals_and_stops_the_driver) {
    hold_a_state_manager();
    for (int const signal_number : {SIGTERM, SIGINT, SIGABRT}) {
        log.clear();
        handle_termination_signal(signal_number);
        EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "SIGTERM received!"),
                                                logged(LogLevel::kInfo, "Shutting down AP_StateManger")));
    }
}

TEST_F(Termination, Ignores_a_signal_before_there_is_a_driver) {
    handle_termination_signal(SIGTERM);
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Termination, Ignores_every_other_signal) {
    hold_a_state_manager();
    for (int const signal_number : {SIGHUP, SIGUSR1, SIGQUIT, SIGPIPE, 0}) {
        handle_termination_signal(signal_number);
    }
    EXPECT_THAT(log.messages(), IsEmpty());
}

std::vector<int> installed;

void (*refuse(int signal_number, void (*handler)(int)))(int) {
    EXPECT_EQ(handler, handle_termination_signal);
    installed.push_back(signal_number);
    return SIG_ERR;
}

void (*accept(int signal_number, void (* /*handler*/)(int)))(int) {
    installed.push_back(signal_number);
    return SIG_DFL;
}

TEST_F(Termination, Is_registered_for_three_signals_in_their_order) {
    installed.clear();
    register_termination_handlers(accept);
    EXPECT_THAT(installed, ElementsAre(SIGABRT, SIGINT, SIGTERM));
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Termination, Carries_on_when_a_handler_can_not_be_registered) {
    installed.clear();
    register_termination_handlers(refuse);
    EXPECT_THAT(installed, ElementsAre(SIGABRT, SIGINT, SIGTERM));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kFatal, "Could not register SIGABRT handler"),
                                            logged(LogLevel::kFatal, "Could not register SIGINT handler"),
                                            logged(LogLevel::kFatal, "Could not register SIGTERM handler")));
}

TEST_F(Termination, Destroys_the_driver_held_before) {
    auto const first = hold_a_state_manager();
    EXPECT_FALSE(first.expired());
    auto const second = hold_a_state_manager();
    EXPECT_TRUE(first.expired());
    EXPECT_FALSE(second.expired());
    g_state_manager.reset(nullptr);
    EXPECT_TRUE(second.expired());
    handle_termination_signal(SIGTERM);
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Termination, Destroys_no_driver_that_a_handler_on_another_thread_is_using) {
    auto const driver = hold_a_state_manager();
    std::promise<void> used;
    std::promise<void> done;
    std::thread handler([&] {
        g_state_manager.with([&](auto& /*manager*/) {
            used.set_value();
            done.get_future().wait();
            EXPECT_FALSE(driver.expired());
        });
    });
    used.get_future().wait();
    auto emptied = std::async(std::launch::async, [] { g_state_manager.reset(nullptr); });
    while (is_held()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(emptied.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    done.set_value();
    handler.join();
    emptied.wait();
    EXPECT_TRUE(driver.expired());
}

// Otherwise emptying the holder would wait for ever for a user that has gone.
TEST_F(Termination, Lets_go_of_the_driver_when_using_it_ends_with_an_exception) {
    hold_a_state_manager();
    EXPECT_THROW(g_state_manager.with([](auto& /*manager*/) { throw std::runtime_error("a defect"); }),
                 std::runtime_error);
    g_state_manager.reset(nullptr);
    handle_termination_signal(SIGTERM);
    EXPECT_THAT(log.messages(), IsEmpty());
}

}  // namespace
