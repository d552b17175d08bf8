#include "statemanager/state_manager.h"

#include "ara/phm/phm_client.h"
#include "ara/phm/supervision_entity.h"
#include "statemanager/phm/supervision_manager.h"
#include "statemanager/states/state_interface.h"
#include "status/page_writer.h"
#include "support/fake_client_states.h"
#include "support/fake_neighbours.h"
#include "support/fake_service_handler.h"
#include "support/log_capture.h"
#include "support/no_memory.h"
#include "support/notify_socket.h"
#include "support/temporary_directory.h"

#include <memory>
#include <new>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <stdlib.h>

namespace ximo::ap::statemanager {
namespace {

using ara::log::LogLevel;
using states::State_interface;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using virtio::Virtio_command;

/// A driver among neighbours that behave; the real states and a control file that the test reads.
class Driver : public testing::Test {
 protected:
    Driver() {
        reset_flags();
        configuration.set_smw_update_status_path(files.file("status"));
        configuration.set_main_function_period(250);
    }
    ~Driver() override { reset_flags(); }

    static void reset_flags() {
        State_interface::set_prepare_SD_flag(false);
        State_interface::set_forced_shutdown_flag(false);
    }

    void start() {
        ASSERT_TRUE(sut.init());
        clients = test_support::last_made_clients;
        log.clear();
    }
    void start_and_run() {
        services->nm_found = true;
        start();
        sut.run_cyclic_task();
        log.clear();
    }
    /// The three groups of clients answer, each in its turn.
    void run_while_clients_answer() {
        for (int group = 0; group < 3; ++group) {
            clients->requests.back().completed(client_state_notifier::Callback_status::succeeded, {});
            sut.run_cyclic_task();
        }
    }
    void press(Virtio_command command) { input->queue.push_back(command); }
    std::string written() const { return files.read("status"); }

    std::vector<std::string> logged_texts() {
        std::vector<std::string> texts;
        for (auto const& message : log.messages()) {
            texts.push_back(ara::log::to_text(message.arguments));
        }
        return texts;
    }

    test_support::Log_capture log;
    test_support::Temporary_directory files;
    config::State_manager_config configuration;
    std::shared_ptr<test_support::Fake_service_handler> services{
        std::make_shared<test_support::Fake_service_handler>()};
    std::shared_ptr<test_support::Fake_execution_management> em{
        std::make_shared<test_support::Fake_execution_management>()};
    test_support::Fake_client_states* clients{nullptr};  // owned by the driver's states
    int beats{0};
    test_support::Fake_virtual_input* input{new test_support::Fake_virtual_input};  // owned by the driver
    State_manager sut{configuration, services, em, std::unique_ptr<virtio::Virtio_interface_abstract>(input),
                      std::make_unique<test_support::Fake_supervision>(beats)};
};

TEST_F(Driver, Opens_the_input_devices_of_the_machine) {
    start();
    EXPECT_THAT(input->directories, ElementsAre("/dev/input"));
}

TEST_F(Driver, Starts_the_services_and_enters_starting_up) {
    ASSERT_TRUE(sut.init());
    EXPECT_THAT(services->actions, ElementsAre("init"));
    EXPECT_EQ(written(), "startingup");
    EXPECT_THAT(log.messages(), Contains(logged(LogLevel::kInfo, "Entering startup state")));
}

TEST_F(Driver, Opens_the_input_then_starts_the_services_then_makes_what_the_states_share) {
    std::vector<std::string> before_services;
    services->listener = [&](std::string const& /*action*/) {
        before_services = input->directories;
        before_services.push_back(written());
        EXPECT_THAT(log.messages(), IsEmpty()) << "the power-off channel is opened with what the states share";
    };
    ASSERT_TRUE(sut.init());
    EXPECT_THAT(before_services, ElementsAre("/dev/input", ""));
}

TEST_F(Driver, Starts_also_when_the_services_do_not) {
    services->init_succeeds = false;
    EXPECT_TRUE(sut.init());
    EXPECT_EQ(written(), "startingup");
}

TEST_F(Driver, Names_both_states_of_a_transition) {
    services->nm_found = true;
    start();
    sut.run_cyclic_task();
    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kInfo, "AP_StateManger transition from", "Starting up", " to ", "Running"),
                            logged(LogLevel::kInfo, "Entering running state")));
    EXPECT_EQ(written(), "startinguprunning");
    EXPECT_THAT(em->actions, ElementsAre("request_running"));
}

TEST_F(Driver, Removes_the_command_when_the_new_state_has_been_entered) {
    start_and_run();
    press(Virtio_command::shutdown);
    std::vector<Virtio_command> waiting_on_entry;
    em->listener = [&](std::string const& /*action*/) { waiting_on_entry.push_back(input->queue.at(0)); };
    sut.run_cyclic_task();
    EXPECT_THAT(waiting_on_entry, ElementsAre(Virtio_command::shutdown));
    EXPECT_THAT(input->queue, IsEmpty());
}

TEST_F(Driver, Ticks_the_state_only_while_it_stays) {
    configuration.set_knockout_timer(2);
    start_and_run();
    services->sleeping = true;
    services->ecu_alive = true;
    press(Virtio_command::nm_controlled);
    sut.run_cyclic_task();
    sut.run_cyclic_task();
    ASSERT_THAT(log.messages(), Contains(logged(LogLevel::kInfo, "AP_StateManger transition from", "NM Controlled",
                                                " to ", "Post Run")));
    EXPECT_THAT(log.messages(LogLevel::kDebug), IsEmpty());
    sut.run_cyclic_task();
    EXPECT_THAT(log.messages(LogLevel::kDebug), ElementsAre(logged(LogLevel::kDebug, "Post rumn tick action")));
    services->com_alive = true;
    sut.run_cyclic_task();
    EXPECT_THAT(log.messages(LogLevel::kDebug).size(), 1U) << "a state that is left does not tick";
}

TEST_F(Driver, Leads_from_NM_controlled_for_a_suspend_over_post_run_to_preparing) {
    configuration.set_knockout_timer(1);
    start_and_run();
    services->ecu_alive = true;
    services->sleeping = true;
    press(Virtio_command::nm_controlled_prepare_sd);
    for (int cycle = 0; cycle < 3; ++cycle) {
        sut.run_cyclic_task();
    }
    EXPECT_TRUE(State_interface::get_prepare_SD_flag());
    sut.run_cyclic_task();
    EXPECT_EQ(written(), "startinguprunningrunnmcontrolledpostrunpreparing");
    EXPECT_FALSE(State_interface::get_prepare_SD_flag());
}

// From running through a suspend and a resume to running again; the clients answer once a cycle.
class Stopped_in_the_middle : public Driver, public testing::WithParamInterface<int> {};

TEST_P(Stopped_in_the_middle, The_driver_ends_after_that_cycle) {
    start_and_run();
    std::size_t answered = 0;
    auto const cycles_before = beats;
    press(Virtio_command::prepare_sd);
    input->while_waiting = [&] {
        if (clients->requests.size() > answered) {
            clients->requests[answered++].completed(client_state_notifier::Callback_status::succeeded, {});
        }
        if (files.read("status") == "startinguprunningpreparingprepared4sd" && input->queue.empty()) {
            press(Virtio_command::run);
        }
        if (beats - cycles_before == GetParam()) {
            sut.shutdown();
        }
    };
    sut.run();
    EXPECT_EQ(beats - cycles_before, GetParam());
    EXPECT_EQ(services->actions.back(), "deinit");
    EXPECT_THAT(log.messages(), Contains(logged(LogLevel::kInfo, "Shutting down AP_StateManger")));
    if (GetParam() == 11) {
        EXPECT_EQ(written(), "startinguprunningpreparingprepared4sdresumingrunning") << "all steps are among them";
    }
}

INSTANTIATE_TEST_SUITE_P(Cycles, Stopped_in_the_middle, testing::Range(1, 12));

TEST_F(Driver, Goes_through_a_suspend_and_back) {
    start_and_run();
    press(Virtio_command::prepare_sd);
    sut.run_cyclic_task();
    run_while_clients_answer();
    EXPECT_EQ(written(), "startinguprunningpreparingprepared4sd");
    press(Virtio_command::run);
    sut.run_cyclic_task();
    run_while_clients_answer();
    EXPECT_EQ(written(), "startinguprunningpreparingprepared4sdresumingrunning");
    EXPECT_THAT(services->actions, ElementsAre("init", "request_network", "standby", "end_standby", "request_network"));
}

TEST_F(Driver, Ends_its_loop_in_the_cycle_of_a_normal_shutdown) {
    start_and_run();
    press(Virtio_command::shutdown);
    sut.run();
    EXPECT_EQ(written(), "startinguprunningshuttingdown");
    EXPECT_EQ(beats, 2) << "one cycle before, one with the shutdown";
    EXPECT_THAT(input->queue, IsEmpty());
    EXPECT_EQ(services->actions.back(), "deinit");
    EXPECT_THAT(em->actions, ElementsAre("request_running", "request_shutdown"));
}

TEST_F(Driver, Tells_execution_management_when_it_runs_and_when_it_ends) {
    test_support::Notify_socket const service_manager;
    start_and_run();
    press(Virtio_command::shutdown);
    sut.run();
    EXPECT_THAT(service_manager.received(), ElementsAre("READY=1", "STOPPING=1"));
    auto const messages = log.at_least(LogLevel::kInfo);
    EXPECT_EQ(messages.front(), logged(LogLevel::kInfo, "AP_StateManger daemon started"));
    EXPECT_EQ(messages.back(), logged(LogLevel::kInfo, "AP_StateManger reporting kTerminating to EM"));
}

// Reports that can't be delivered are logged, and so show when they were tried.
TEST_F(Driver, Reports_before_it_says_that_it_runs_and_after_the_services_are_withdrawn) {
    start_and_run();
    services->listener = [](std::string const& action) { ara::log::LogInfo() << action; };
    press(Virtio_command::shutdown);
    ::setenv("NOTIFY_SOCKET", "/nowhere/notify", 1);
    sut.run();
    ::unsetenv("NOTIFY_SOCKET");
    auto const texts = logged_texts();
    ASSERT_GE(texts.size(), 5U);
    EXPECT_THAT(texts[0], StartsWith("Application state not reported: "));
    EXPECT_EQ(texts[1], "AP_StateManger daemon started");
    EXPECT_EQ(texts[texts.size() - 3], "deinit");
    EXPECT_EQ(texts[texts.size() - 2], "AP_StateManger reporting kTerminating to EM");
    EXPECT_THAT(texts.back(), StartsWith("Application state not reported: "));
}

/// A driver in a process that has logged more than there was room for.
class Driver_after_a_flood : public Driver {
 protected:
    static void SetUpTestSuite() {
        for (int message = 0; message < 3'000; ++message) {
            ara::log::LogInfo() << message;
        }
    }
};

TEST_F(Driver_after_a_flood, Tells_how_many_messages_the_log_has_lost) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    start_and_run();
    status::set_page(nullptr);
    EXPECT_GT(ara::log::LostMessages(), 0U);
    EXPECT_EQ(status::own(page->driver.log_lost), ara::log::LostMessages());
}

TEST_F(Driver_after_a_flood, Tells_at_its_end_what_was_lost_after_the_last_beat) {
    auto const page = std::make_unique<status::Page>();
    start_and_run();
    em->listener = [&](std::string const& /*action*/) { status::set_page(page.get()); };
    press(Virtio_command::shutdown);
    sut.run();
    status::set_page(nullptr);
    EXPECT_GT(ara::log::LostMessages(), 0U);
    EXPECT_EQ(status::own(page->driver.log_lost), ara::log::LostMessages());
}

/// What a hypervisor presses that takes no memory of its own.
class Quiet_input : public virtio::Virtio_interface_abstract {
 public:
    explicit Quiet_input(Virtio_command& pressed) : pressed_(pressed) {}

    bool init(std::string /*device_directory*/) override { return true; }
    Virtio_command get_command(unsigned int /*timeout_ms*/) override { return pressed_; }
    void command_consumed() override { pressed_ = Virtio_command::none; }

 private:
    Virtio_command& pressed_;
};

// Memory that can't be had would end the daemon, so a cycle in which nothing happens wants none: in each state, with
// all levels logged and the beat sent.
TEST_F(Driver, Takes_no_memory_in_a_cycle_without_a_transition) {
    test_support::Notify_socket const service_manager;
    ara::phm::Phm_client const client("state manager");
    auto pressed = Virtio_command::none;
    State_manager quiet(
        configuration, services, em, std::make_unique<Quiet_input>(pressed),
        std::make_unique<phm::Supervision_manager>(std::make_unique<ara::phm::SupervisionEntity>(client)));
    auto const rest_in = [&](char const* words) {
        SCOPED_TRACE(words);
        EXPECT_EQ(written(), words);
        quiet.run_cyclic_task();  // what a state does once
        log.clear();
        bool wanted_memory = false;
        {
            test_support::No_memory const lack;
            try {
                quiet.run_cyclic_task();
                quiet.run_cyclic_task();
            } catch (std::bad_alloc const&) {
                wanted_memory = true;
            }
            wanted_memory = wanted_memory || lack.was_met();
        }
        EXPECT_FALSE(wanted_memory);
        EXPECT_EQ(written(), words);
        EXPECT_THAT(log.messages(), Contains(logged(LogLevel::kVerbose, "Starting AP_StateManager run_cyclic_task")));
    };
    auto const press_and_enter = [&](Virtio_command command) {
        pressed = command;
        quiet.run_cyclic_task();
    };
    ASSERT_TRUE(quiet.init());
    clients = test_support::last_made_clients;
    rest_in("startingup");
    services->nm_found = true;
    quiet.run_cyclic_task();
    rest_in("startinguprunning");
    press_and_enter(Virtio_command::prepare_sd);
    rest_in("startinguprunningpreparing");
    for (int group = 0; group < 3; ++group) {
        clients->requests.back().completed(client_state_notifier::Callback_status::succeeded, {});
        quiet.run_cyclic_task();
    }
    rest_in("startinguprunningpreparingprepared4sd");
    press_and_enter(Virtio_command::run);
    rest_in("startinguprunningpreparingprepared4sdresuming");
}

TEST_F(Driver, Runs_without_any_collaborator) {
    State_manager alone(configuration, nullptr, nullptr, nullptr, nullptr);
    configuration.set_nm_usage(false);
    State_manager without_nm(configuration, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(alone.init());
    EXPECT_TRUE(without_nm.init());
    for (int cycle = 0; cycle < 3; ++cycle) {
        alone.run_cyclic_task();
        without_nm.run_cyclic_task();
    }
    EXPECT_THAT(log.messages(),
                Contains(logged(LogLevel::kInfo, "AP_StateManger transition from", "Starting up", " to ", "Running")));
}

}  // namespace
}  // namespace ximo::ap::statemanager
