// The driver's cycle, with states that a test plays: whatever they answer, and whenever the loop is asked to end.

#include "statemanager/state_manager.h"
#include "statemanager/states/state_factory.h"
#include "support/fake_neighbours.h"
#include "support/fake_service_handler.h"
#include "support/log_capture.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;
using virtio::Virtio_command;

/// What all played states share.
struct Play {
    std::vector<std::string> asked;  ///< in order; "make 3", "enter 0", "check 0", "tick 0", "exit 0"
    std::vector<Virtio_command> offered;
    unsigned next{states::k_stay};  ///< what the current state answers
    bool forced{false};
    config::State_manager_config const* configuration{nullptr};  ///< the driver's
};
Play* play = nullptr;  // that of the test that runs

class Played_state : public states::State_interface {
 public:
    explicit Played_state(unsigned id)
        : State_interface(nullptr, "state " + std::to_string(id)), id_(std::to_string(id)) {}

    bool entering_state() override { return note("enter "); }
    void tick() override { note("tick "); }
    bool exiting_state() override { return note("exit "); }
    unsigned check_transition(Virtio_command const& command) override {
        play->offered.push_back(command);
        note("check ");
        return play->next;
    }
    bool is_forced_shutdown() override { return play->forced; }

 private:
    // The result is not looked at.
    bool note(std::string const& what) const {
        play->asked.push_back(what + id_);
        return false;
    }

    std::string const id_;
};

class Cycle : public testing::Test {
 protected:
    Cycle() {
        play = &played;
        played.configuration = &configuration;
    }

    void start() {
        ASSERT_TRUE(sut.init());
        played.asked.clear();
        log.clear();
    }

    test_support::Log_capture log;
    Play played;
    config::State_manager_config configuration;
    std::shared_ptr<test_support::Fake_service_handler> services{
        std::make_shared<test_support::Fake_service_handler>()};
    int beats{0};
    test_support::Fake_virtual_input* input{new test_support::Fake_virtual_input};  // owned by the driver
    State_manager sut{configuration, services, nullptr, std::unique_ptr<virtio::Virtio_interface_abstract>(input),
                      std::make_unique<test_support::Fake_supervision>(beats)};
};

TEST_F(Cycle, Has_its_states_made_after_the_services_have_started_and_enters_the_first) {
    services->listener = [&](std::string const& action) { played.asked.push_back("services " + action); };
    EXPECT_TRUE(sut.init());
    EXPECT_THAT(played.asked, ElementsAre("services init", "make 0", "make 1", "make 2", "make 3", "make 4", "make 5",
                                          "make 7", "make 6", "enter 0"));
}

TEST_F(Cycle, Is_refused_when_there_is_no_input) {
    input->usable = false;
    EXPECT_FALSE(sut.init());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kError, "AP_StateManger failed to initialize VirtIO")));
    EXPECT_THAT(services->actions, IsEmpty());

    log.clear();
    sut.run_cyclic_task();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "Starting AP_StateManager run_cyclic_task"),
                                            logged(LogLevel::kError, "AP_StateManger not initialized")));
    EXPECT_THAT(played.asked, IsEmpty());
    EXPECT_EQ(beats, 0);
}

// Each state answers everything, also ids that no state has: these lead to shutting down. A command is offered until a
// transition, whatever has caused it.
TEST_F(Cycle, Enters_what_the_state_answers_takes_the_command_along_and_otherwise_ticks) {
    start();
    unsigned current = 0;
    for (unsigned const first : {0U, 1U, 2U, 3U, 5U, 6U, 7U}) {
        for (unsigned const answer : {8U, first, 8U, 0U, 1U, 2U, 3U, 5U, 6U, 7U}) {
            SCOPED_TRACE(testing::Message() << "state " << current << " answers " << answer);
            played = {};
            played.configuration = &configuration;
            log.clear();
            played.next = answer;
            input->queue = {Virtio_command::run, Virtio_command::shutdown};
            sut.run_cyclic_task();
            EXPECT_THAT(played.offered, ElementsAre(Virtio_command::run));
            auto const check = "check " + std::to_string(current);
            if (answer == 8) {
                EXPECT_THAT(played.asked, ElementsAre(check, "tick " + std::to_string(current)));
                EXPECT_THAT(input->queue, ElementsAre(Virtio_command::run, Virtio_command::shutdown));
                EXPECT_THAT(log.at_least(LogLevel::kDebug), IsEmpty());
            } else {
                EXPECT_THAT(played.asked, ElementsAre(check, "enter " + std::to_string(answer)));
                EXPECT_THAT(input->queue, ElementsAre(Virtio_command::shutdown));
                EXPECT_THAT(
                    log.at_least(LogLevel::kDebug),
                    ElementsAre(logged(LogLevel::kInfo, "AP_StateManger transition from",
                                       "state " + std::to_string(current), " to ", "state " + std::to_string(answer))));
                current = answer;
            }
        }
    }
}

TEST_F(Cycle, Leads_to_shutting_down_with_an_answer_that_no_state_has) {
    for (unsigned const answer : {9U, 12U, 256U, 0x80000001U, 0xFFFFFFFFU}) {
        start();
        played.next = answer;
        sut.run_cyclic_task();
        EXPECT_EQ(played.asked.back(), "enter 4") << answer;
    }
}

TEST_F(Cycle, Ends_the_loop_with_a_normal_shutdown_and_goes_on_after_a_forced_one) {
    start();
    played.next = states::k_shutting_down;
    sut.run();
    EXPECT_EQ(beats, 1);

    played.forced = true;
    ASSERT_TRUE(sut.init());
    played.asked.clear();
    input->while_waiting = [this] {
        if (beats > 2) {
            played.next = states::k_stay;
        }
        if (beats == 5) {
            sut.shutdown();
        }
    };
    sut.run();
    EXPECT_THAT(played.asked,
                ElementsAre("check 4", "enter 4", "check 4", "tick 4", "check 4", "tick 4", "check 4", "tick 4"));
}

TEST_F(Cycle, Does_not_begin_when_the_loop_was_asked_to_end_before_it) {
    start();
    sut.shutdown();
    sut.run();
    EXPECT_EQ(beats, 0);
    EXPECT_THAT(played.asked, IsEmpty());
    EXPECT_THAT(services->actions, ElementsAre("init", "deinit"));
    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kInfo, "Shutting down AP_StateManger"),
                            logged(LogLevel::kInfo, "AP_StateManger daemon started"),
                            logged(LogLevel::kInfo, "AP_StateManger reporting kTerminating to EM")));
}

TEST_F(Cycle, Forgets_that_the_loop_was_asked_to_end_while_it_was_initialised) {
    sut.shutdown();
    services->listener = [this](std::string const& /*action*/) { sut.shutdown(); };
    start();
    services->listener = [](std::string const& /*action*/) {};
    sut.run_cyclic_task();
    EXPECT_EQ(beats, 1);
}

TEST_F(Cycle, Reports_alive_before_it_waits_one_period_for_a_command) {
    configuration.set_main_function_period(250);
    start();
    int beats_before_waiting = 0;
    input->while_waiting = [&] { beats_before_waiting = beats; };
    sut.run_cyclic_task();
    EXPECT_EQ(beats_before_waiting, 1);
    configuration.set_main_function_period(50);
    sut.run_cyclic_task();
    EXPECT_THAT(input->timeouts, ElementsAre(250U, 50U));
    EXPECT_THAT(log.messages().front(), logged(LogLevel::kVerbose, "Starting AP_StateManager run_cyclic_task"));
}

}  // namespace

// In the place of the real factory.
namespace states {

State_factory::State_factory(config::State_manager_config const& configuration,
                             std::shared_ptr<Service_handler_interface> const& service_handler,
                             std::shared_ptr<Em_interface_abstract> const& execution_management)
    : configuration_(configuration), service_handler_(service_handler), execution_management_(execution_management) {}

std::unique_ptr<State_interface> State_factory::create_state(unsigned id) const {
    EXPECT_EQ(&configuration_, play->configuration);
    play->asked.push_back("make " + std::to_string(id));
    return std::make_unique<Played_state>(id);
}

}  // namespace states
}  // namespace ximo::ap::statemanager
