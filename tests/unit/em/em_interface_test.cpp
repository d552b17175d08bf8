#include "statemanager/em/em_interface.h"

#include "status/page_writer.h"
#include "support/log_capture.h"
#include "support/virtual_slot.h"

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using ara::exec::Function_group_state_transition;
using ara::exec::State_client_result;
using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto k_reached = Function_group_state_transition::kReached;
constexpr auto k_in_transition = Function_group_state_transition::kInTransition;

/// The adapter with execution management replaced by answers of the test's choice.
class Em_with_answers : public Em_interface {
 public:
    std::vector<std::string> requests;
    std::string state;
    Function_group_state_transition transition{k_in_transition};
    State_client_result result{State_client_result::kSuccess};
    bool unreachable{false};
    bool defective{false};
    test_support::Log_capture log;
    std::vector<test_support::Log_message> logged_before;  ///< at the last request

    State_client_result StateClient_SetState(std::string const& function_group, std::string const& wanted) override {
        requests.push_back(function_group + ":" + wanted);
        logged_before = log.messages();
        fail_when_told();
        return result;
    }
    State_client_result GetState(std::string const& function_group, std::string& out_state,
                                 Function_group_state_transition& out_transition) override {
        EXPECT_EQ(function_group, "MachineState");
        EXPECT_EQ(out_state, "");
        EXPECT_EQ(out_transition, k_in_transition);
        out_state = state;
        out_transition = transition;
        fail_when_told();
        return result;
    }

 private:
    void fail_when_told() const {
        if (unreachable) {
            throw std::runtime_error("nobody there");
        }
        if (defective) {
            throw std::logic_error("a defect");
        }
    }
};

class Em_adapter : public testing::Test {
 protected:
    bool check(std::string const& state, Function_group_state_transition transition) {
        sut.state = state;
        sut.transition = transition;
        return sut.check_for_running_state();
    }

    Em_with_answers sut;
    test_support::Log_capture& log{sut.log};
};

struct Request {
    void (Em_interface::*make)();
    char const* state;
    char const* text;
    char const* failure;
};

void PrintTo(Request const& request, std::ostream* out) {
    *out << request.state;
}

class Em_request : public Em_adapter, public testing::WithParamInterface<Request> {
 protected:
    void make() { (sut.*GetParam().make)(); }
    std::vector<std::string> const wanted{std::string("MachineState:") + GetParam().state};
    test_support::Log_message const told{logged(LogLevel::kInfo, GetParam().text)};
};

TEST_P(Em_request, Is_told_and_then_made_and_its_result_is_ignored) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    for (auto const result : {State_client_result::kSuccess, State_client_result::kRefused}) {
        sut.result = result;
        log.clear();
        sut.requests.clear();
        make();
        EXPECT_EQ(sut.requests, wanted);
        EXPECT_THAT(sut.logged_before, ElementsAre(told));
        EXPECT_THAT(log.messages(), ElementsAre(told));
        EXPECT_NE(page->driver.machine_state_at, 0U);
        EXPECT_EQ(page->driver.machine_state_failed, result == State_client_result::kSuccess ? 0U : 1U);
    }
    status::set_page(nullptr);
}

TEST_P(Em_request, That_can_not_be_made_is_an_error) {
    sut.unreachable = true;
    make();
    EXPECT_EQ(sut.requests, wanted);
    EXPECT_THAT(log.messages(), ElementsAre(told, logged(LogLevel::kError, GetParam().failure, "nobody there")));
}

INSTANTIATE_TEST_SUITE_P(
    States, Em_request,
    testing::Values(Request{&Em_interface::request_shutdown, "Shutdown", "Setting EM machine state to shutdown",
                            "StateClient::SetState(MachineState, Shutdown) exception: "},
                    Request{&Em_interface::request_running, "Running", "Setting EM machine state to running",
                            "StateClient::SetState(MachineState, Running) exception: "}));

TEST_F(Em_adapter, Passes_other_exceptions_on) {
    sut.defective = true;
    EXPECT_THROW(sut.request_running(), std::logic_error);
    EXPECT_THROW(sut.request_shutdown(), std::logic_error);
    EXPECT_THROW(sut.check_for_running_state(), std::logic_error);
}

TEST_F(Em_adapter, Counts_the_machine_as_started_once_startup_or_running_is_reached) {
    EXPECT_TRUE(check("Startup", k_reached));
    EXPECT_TRUE(check("Running", k_reached));
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Em_adapter, Does_not_count_a_state_on_the_way_or_another_one) {
    EXPECT_FALSE(check("Running", k_in_transition));
    EXPECT_FALSE(check("Startup", k_in_transition));
    EXPECT_FALSE(check("Shutdown", k_reached));
    EXPECT_FALSE(check("", k_reached));
    EXPECT_FALSE(check("Running", static_cast<Function_group_state_transition>(2)));
}

TEST_F(Em_adapter, Logs_the_code_of_a_refused_query_and_looks_at_nothing_else) {
    sut.result = State_client_result::kRefused;
    EXPECT_FALSE(check("Running", k_reached));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kError, "EM has not been started. Error code: ", 2)));
}

TEST_F(Em_adapter, Judges_what_it_has_when_the_query_throws) {
    sut.unreachable = true;
    EXPECT_FALSE(check("", k_in_transition));
    EXPECT_TRUE(check("Running", k_reached)) << "what was filled in before the exception counts";
    EXPECT_THAT(
        log.messages().at(0),
        logged(LogLevel::kError, "StateClient::GetState(MachineState, state, phase) exception: ", "nobody there"));
}

TEST(Em_interface_abstract, The_operations_stand_in_the_order_of_the_interface) {
    test_support::expect_slots_from(1, &Em_interface_abstract::request_shutdown,
                                    &Em_interface_abstract::request_running,
                                    &Em_interface_abstract::check_for_running_state,
                                    &Em_interface_abstract::StateClient_SetState, &Em_interface_abstract::GetState);
}

}  // namespace
}  // namespace ximo::ap::statemanager
