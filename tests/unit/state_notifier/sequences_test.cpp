#include "notifier_fixture.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::state_notifier {
namespace {

using client_state_notifier::Callback_status;
using client_state_notifier::Component_client_return_type;
using testing::ElementsAre;
using testing::IsEmpty;

using Sequence = Notifier_test;

/// What happens, in order: S a standby is requested, R a resume, c the group that was asked last answers, and a digit:
/// the state machine takes the next step, if one is due, and is told this status.
struct Course {
    char const* name;
    std::string events;
    std::vector<Step> steps;

    friend std::ostream& operator<<(std::ostream& out, Course const& course) { return out << course.name; }
};

class Course_of_a_sequence : public Notifier_test, public testing::WithParamInterface<Course> {
 protected:
    void happens(char event) {
        switch (event) {
            case 'S':
                sut.request_standby();
                break;
            case 'R':
                sut.request_resume();
                break;
            case 'c':
                complete();
                break;
            default:
                EXPECT_EQ(sut.check_request_status(), static_cast<unsigned>(event - '0'));
        }
    }
};

TEST_P(Course_of_a_sequence, Asks_the_groups_in_this_order) {
    auto const& events = GetParam().events;
    for (std::size_t at = 0; at < events.size(); ++at) {
        SCOPED_TRACE(events.substr(0, at + 1));
        happens(events[at]);
    }
    EXPECT_EQ(steps(), GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Course_of_a_sequence,
    testing::Values(
        Course{"Nothing", "0", {}}, Course{"Standby", "S11c11c11c00", {k_dcm_standby, k_apps_standby, k_dem_standby}},
        Course{"Resume", "R11c11c11c00", {k_dem_on, k_apps_on, k_dcm_on}},
        Course{"Resume_after_a_whole_standby",
               "S1c1c1c0R1c1c1c0",
               {k_dcm_standby, k_apps_standby, k_dem_standby, k_dem_on, k_apps_on, k_dcm_on}},
        Course{"Standby_starts_again",
               "Sc1Sc1c1c0",
               {k_dcm_standby, k_apps_standby, k_dcm_standby, k_apps_standby, k_dem_standby}},
        Course{"Standby_voids_a_step_that_was_due", "Sc1cS1", {k_dcm_standby, k_apps_standby, k_dcm_standby}},
        Course{"Standby_replaces_a_resume", "RSc1c1c0", {k_dem_on, k_dcm_standby, k_apps_standby, k_dem_standby}},
        Course{"Resume_is_not_started_twice", "RR", {k_dem_on}},
        Course{"Turned_back_while_DCM_is_asked", "SR1c1c0", {k_dcm_standby, k_dcm_on}},
        Course{"Turned_back_after_DCM", "ScR1c0", {k_dcm_standby, k_dcm_on}},
        Course{"Turned_back_at_the_applications", "Sc1Rc1c1c0", {k_dcm_standby, k_apps_standby, k_apps_on, k_dcm_on}},
        // Nobody may stay prepared for shutdown on a running machine.
        Course{"Turned_back_at_DEM",
               "Sc1c1Rc1c1c1c0",
               {k_dcm_standby, k_apps_standby, k_dem_standby, k_dem_on, k_apps_on, k_dcm_on}}),
    [](auto const& instance) { return std::string(instance.param.name); });

TEST_F(Sequence, Takes_every_other_name_for_an_application) {
    sut.request_standby();
    complete_and_check();
    for (auto const* name : {"", "radio", "diag::", "diag::dcm2", "Diag::dcm", "dem", " diag::dem"}) {
        EXPECT_TRUE(last().predicate(name)) << name;
    }
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
