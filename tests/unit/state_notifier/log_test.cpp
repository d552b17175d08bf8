#include "notifier_fixture.h"
#include "status/page_writer.h"

namespace ximo::ap::statemanager::state_notifier {
namespace {

using ara::log::LogLevel;
using client_state_notifier::Callback_status;
using client_state_notifier::Client_status;
using client_state_notifier::Component_client_return_type;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;

using Notifier_log = Notifier_test;

TEST_F(Notifier_log, Tells_each_step_of_a_standby) {
    sut.request_standby();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Starting standby sequence"),
                                            logged(LogLevel::kInfo, "Requesting ", "kPrepSD", " mode for DCM")));
    complete();
    log.clear();
    sut.check_request_status();
    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kInfo, "Requesting ", "kPrepSD", " mode for client applications")));
    complete();
    log.clear();
    sut.check_request_status();
    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kInfo, "Requesting ", "kPrepSD", " mode for DEM")));
}

TEST_F(Notifier_test, Tells_the_status_page_which_group_is_asked) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    auto const group = [&page] { return static_cast<status::Group>(status::own(page->driver.group)); };
    sut.request_standby();
    for (auto const asked : {status::Group::dcm, status::Group::applications, status::Group::dem}) {
        EXPECT_EQ(group(), asked);
        complete();
        sut.check_request_status();
    }
    status::set_page(nullptr);
}

TEST_F(Notifier_log, Tells_each_step_of_a_resume) {
    sut.request_resume();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Starting resume sequence"),
                                            logged(LogLevel::kInfo, "Requesting ", "kOn", " mode for DEM")));
    complete();
    log.clear();
    sut.check_request_status();
    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kInfo, "Requesting ", "kOn", " mode for client applications")));
    complete();
    log.clear();
    sut.check_request_status();
    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kInfo, "Requesting ", "kOn", " mode for DCM")));
}

TEST_F(Notifier_log, Tells_a_resume_in_the_middle_of_a_standby) {
    sut.request_standby();
    log.clear();
    sut.request_resume();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Starting resume sequence")));
}

TEST_F(Notifier_log, Tells_the_completion_of_each_group_with_its_status) {
    sut.request_standby();
    log.clear();
    complete(Callback_status::succeeded);
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Received DCM client completion notification for ",
                                                   "kPrepSD", ". Status: ", 0U)));
    sut.check_request_status();
    log.clear();
    complete(Callback_status::timed_out);
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kInfo, "Received application client completion notification for ",
                                   "kPrepSD", ". Status: ", 1U)));
    sut.check_request_status();
    log.clear();
    complete(Callback_status::failed);
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Received DEM client completion notification for ",
                                                   "kPrepSD", ". Status: ", 2U)));
}

TEST_F(Notifier_log, Tells_how_each_client_ended) {
    sut.request_standby();
    log.clear();
    complete(Callback_status::timed_out, {{"a", Component_client_return_type::succeeded},
                                          {"b", Component_client_return_type::general_error},
                                          {"c", Component_client_return_type::invalid},
                                          {"d", Component_client_return_type::timed_out},
                                          {"e", Component_client_return_type{7}}});
    char const* const start = "State notification client [";
    EXPECT_THAT(log.messages(), ElementsAre(testing::_, logged(LogLevel::kInfo, start, "a", "] succeeded"),
                                            logged(LogLevel::kInfo, start, "b", "] general error"),
                                            logged(LogLevel::kInfo, start, "c", "] invalid"),
                                            logged(LogLevel::kInfo, start, "d", "] timed out"),
                                            logged(LogLevel::kInfo, start, "e", "] unknown status ", std::uint8_t{7})));
}

TEST_F(Notifier_log, Tells_of_a_client_that_speaks_out_of_turn) {
    server->report("radio", Client_status::answered_out_of_turn, "kOn");
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kWarn, "Client ", "radio", " errorneously reported state change to ",
                                   "kOn", ". Client status: ", 1U)));
    log.clear();
    server->report("seat", Client_status::connected_under_known_name, "kOff");
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kWarn, "Client ", "seat", " errorneously reported state change to ",
                                   "kOff", ". Client status: ", 0U)));
}

TEST_F(Notifier_log, Tells_at_the_lowest_level_that_no_diagnostic_group_is_done) {
    sut.request_standby();
    log.clear();
    sut.check_request_status();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "check_dm_request_status else")));
}

TEST_F(Notifier_log, Tells_of_the_applications_before_the_diagnostic_groups) {
    sut.request_standby();
    complete();
    sut.check_request_status();
    complete();
    log.clear();
    sut.check_request_status();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Requesting ", "kPrepSD", " mode for DEM"),
                                            logged(LogLevel::kVerbose, "check_dm_request_status else")));
}

TEST_F(Notifier_log, Is_silent_while_no_sequence_runs) {
    sut.check_request_status();
    EXPECT_THAT(log.messages(), testing::IsEmpty());
}

TEST_F(Notifier_log, Has_the_normal_mode_as_the_state_that_clients_are_compared_with) {
    EXPECT_EQ(server->default_state, "kOn");
}

}  // namespace
}  // namespace ximo::ap::statemanager::state_notifier
