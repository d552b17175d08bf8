#include "notifier_fixture.h"

namespace ximo::ap::statemanager::state_notifier {
namespace {

using client_state_notifier::Callback_status;
using client_state_notifier::Component_client_return_type;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Sequence = Notifier_test;

TEST_F(Sequence, Is_finished_before_any_request) {
    EXPECT_EQ(sut.check_request_status(), 0U);
    EXPECT_THAT(server->requests, IsEmpty());
}

TEST_F(Sequence, Of_a_standby_goes_from_DCM_over_the_applications_to_DEM) {
    sut.request_standby();
    EXPECT_EQ(sut.check_request_status(), 1U) << "DCM owes its answer";
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby, k_dem_standby));
}

TEST_F(Sequence, Of_a_resume_goes_from_DEM_over_the_applications_to_DCM) {
    sut.request_resume();
    EXPECT_EQ(sut.check_request_status(), 1U) << "DEM owes its answer";
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dem_on, k_apps_on, k_dcm_on));
}

TEST_F(Sequence, Takes_every_other_name_for_an_application) {
    sut.request_standby();
    complete_and_check();
    for (auto const* name : {"", "radio", "diag::", "diag::dcm2", "Diag::dcm", "dem", " diag::dem"}) {
        EXPECT_TRUE(last().predicate(name)) << name;
    }
}

TEST_F(Sequence, Takes_no_step_before_the_group_has_answered) {
    sut.request_standby();
    sut.check_request_status();
    sut.check_request_status();
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby));
}

TEST_F(Sequence, Takes_each_step_once) {
    sut.request_standby();
    complete();
    sut.check_request_status();
    sut.check_request_status();
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby));
}

TEST_F(Sequence, Gives_applications_and_diagnostics_their_own_time) {
    sut.request_standby();
    complete_and_check();
    complete_and_check();
    std::vector<std::chrono::seconds> timeouts;
    for (auto const& request : server->requests) {
        timeouts.push_back(request.timeout);
    }
    EXPECT_THAT(timeouts, ElementsAre(std::chrono::seconds(3), std::chrono::seconds(7), std::chrono::seconds(3)));
}

TEST_F(Sequence, Goes_on_after_clients_that_failed_or_timed_out) {
    sut.request_standby();
    complete(Callback_status::failed, {{"diag::dcm", Component_client_return_type::general_error}});
    sut.check_request_status();
    complete(Callback_status::timed_out, {{"radio", Component_client_return_type::timed_out}});
    sut.check_request_status();
    complete(Callback_status::timed_out);
    EXPECT_EQ(sut.check_request_status(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby, k_dem_standby));
}

TEST_F(Sequence, Ends_with_the_last_completion_itself) {
    sut.request_standby();
    complete_and_check();
    complete_and_check();
    EXPECT_EQ(sut.check_request_status(), 1U);
    complete();
    EXPECT_EQ(sut.check_request_status(), 0U);
}

TEST_F(Sequence, Of_a_resume_follows_a_whole_standby) {
    sut.request_standby();
    complete_and_check();
    complete_and_check();
    complete_and_check();
    server->requests.clear();
    sut.request_resume();
    complete_and_check();
    complete_and_check();
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dem_on, k_apps_on, k_dcm_on));
}

TEST_F(Sequence, Starts_at_DCM_again_with_a_second_standby) {
    sut.request_standby();
    complete_and_check();
    sut.request_standby();
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby, k_dcm_standby, k_apps_standby, k_dem_standby));
}

TEST_F(Sequence, Forgets_a_step_that_was_due_when_a_second_standby_starts) {
    sut.request_standby();
    complete_and_check();
    complete();  // the applications are done, and DEM would be next
    sut.request_standby();
    sut.check_request_status();
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby, k_dcm_standby));
}

TEST_F(Sequence, Of_a_standby_replaces_a_running_resume) {
    sut.request_resume();
    sut.request_standby();
    complete_and_check();
    complete_and_check();
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dem_on, k_dcm_standby, k_apps_standby, k_dem_standby));
}

TEST_F(Sequence, Of_a_resume_is_not_started_twice) {
    sut.request_resume();
    sut.request_resume();
    EXPECT_THAT(steps(), ElementsAre(k_dem_on));
}

// A resume in the middle of a standby turns it back at the step that it has come to.

TEST_F(Sequence, Turned_back_at_DCM_asks_DCM_again_and_ends) {
    sut.request_standby();
    sut.request_resume();
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby)) << "the running request goes on";
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_dcm_on));
}

TEST_F(Sequence, Turned_back_at_the_applications_asks_them_again_and_then_DCM) {
    sut.request_standby();
    complete_and_check();
    sut.request_resume();
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby, k_apps_on, k_dcm_on));
}

TEST_F(Sequence, Turned_back_between_DCM_and_the_applications_asks_DCM_again) {
    sut.request_standby();
    complete();
    sut.request_resume();
    EXPECT_EQ(sut.check_request_status(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_dcm_on));
}

TEST_F(Sequence, Turned_back_at_DEM_goes_all_the_way_back) {
    sut.request_standby();
    complete_and_check();
    complete_and_check();
    sut.request_resume();
    EXPECT_EQ(complete_and_check(), 1U) << "nobody may stay prepared for shutdown on a running machine";
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby, k_dem_standby, k_dem_on, k_apps_on, k_dcm_on));
}

TEST_F(Sequence, Is_not_moved_by_the_completion_of_a_request_that_was_replaced) {
    sut.request_standby();
    auto const replaced = last();
    sut.request_standby();
    log.clear();
    replaced.completed(Callback_status::timed_out, {{"diag::dcm", Component_client_return_type::timed_out}});
    EXPECT_EQ(sut.check_request_status(), 1U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_dcm_standby));
    EXPECT_THAT(sut.get_dcm_clients_status(), IsEmpty());
    EXPECT_THAT(log.at_least(ara::log::LogLevel::kDebug), IsEmpty());
}

TEST_F(Sequence, Is_not_ended_by_the_resume_of_before) {
    sut.request_resume();
    complete_and_check();
    complete_and_check();
    auto const last_of_resume = last();
    sut.request_standby();
    last_of_resume.completed(Callback_status::succeeded, {});
    EXPECT_EQ(sut.check_request_status(), 1U);
}

// The second resume is at DCM again, but its own request has not completed.
TEST_F(Sequence, Is_not_ended_by_a_resume_that_a_standby_and_another_resume_replaced) {
    sut.request_resume();
    complete_and_check();
    complete_and_check();
    auto const last_of_resume = last();
    sut.request_standby();
    sut.request_resume();
    EXPECT_EQ(complete_and_check(), 1U);
    last_of_resume.completed(Callback_status::succeeded, {});
    EXPECT_EQ(sut.check_request_status(), 1U);
    EXPECT_EQ(complete_and_check(), 0U);
}

TEST_F(Sequence, Keeps_what_each_group_answered_last) {
    EXPECT_THAT(sut.get_dcm_clients_status(), IsEmpty());
    EXPECT_THAT(sut.get_app_clients_status(), IsEmpty());
    EXPECT_THAT(sut.get_dem_clients_status(), IsEmpty());
    client_state_notifier::Client_results const dcm{{"diag::dcm", Component_client_return_type::succeeded}};
    client_state_notifier::Client_results const apps{{"radio", Component_client_return_type::invalid},
                                                     {"seat", Component_client_return_type::succeeded}};
    client_state_notifier::Client_results const dem{{"diag::dem", Component_client_return_type::timed_out}};
    sut.request_standby();
    complete(Callback_status::succeeded, dcm);
    sut.check_request_status();
    complete(Callback_status::failed, apps);
    sut.check_request_status();
    complete(Callback_status::timed_out, dem);
    EXPECT_EQ(sut.get_dcm_clients_status(), dcm);
    EXPECT_EQ(sut.get_app_clients_status(), apps);
    EXPECT_EQ(sut.get_dem_clients_status(), dem);
}

TEST_F(Sequence, Replaces_the_answers_of_before) {
    sut.request_standby();
    complete(Callback_status::succeeded, {{"diag::dcm", Component_client_return_type::succeeded}});
    sut.request_standby();
    complete();
    EXPECT_THAT(sut.get_dcm_clients_status(), IsEmpty());
}

// Its completion never comes.
TEST_F(Sequence, Goes_on_when_the_server_can_not_be_told_of_a_request) {
    server->can_be_told = false;
    sut.request_standby();
    EXPECT_EQ(sut.check_request_status(), 1U);
    EXPECT_EQ(sut.check_request_status(), 0U);
    sut.request_resume();
    EXPECT_EQ(sut.check_request_status(), 1U);
    EXPECT_EQ(sut.check_request_status(), 0U);
    EXPECT_THAT(steps(), ElementsAre(k_dcm_standby, k_apps_standby, k_dem_standby, k_dem_on, k_apps_on, k_dcm_on));
}

}  // namespace
}  // namespace ximo::ap::statemanager::state_notifier
