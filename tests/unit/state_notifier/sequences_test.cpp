#include "notifier_fixture.h"

#include <cstddef>
#include <map>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace ximo::ap::statemanager::state_notifier {
namespace {

using client_state_notifier::Callback_status;
using client_state_notifier::Component_client_return_type;
using testing::ElementsAre;
using testing::IsEmpty;

using Sequence = Notifier_test;

/// What happens, in order: S a standby is requested, R a resume, c the group that was asked last answers, A to
/// D the first to fourth one that was asked does, and a digit: the state machine takes the next step, if one is due,
/// and is told this status.
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
            case 'A':
            case 'B':
            case 'C':
            case 'D':
                server->requests.at(static_cast<std::size_t>(event - 'A')).completed(Callback_status::succeeded, {});
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
        Course{"Late_DCM", "SSA1c1c1c0", {k_dcm_standby, k_dcm_standby, k_apps_standby, k_dem_standby}},
        Course{"Late_applications",
               "Sc1SB1c1c1c0",
               {k_dcm_standby, k_apps_standby, k_dcm_standby, k_apps_standby, k_dem_standby}},
        Course{"Late_DEM",
               "Sc1c1SC1c1c1c0",
               {k_dcm_standby, k_apps_standby, k_dem_standby, k_dcm_standby, k_apps_standby, k_dem_standby}},
        Course{"Late_DEM_of_a_resume", "RSA1c1c1c0", {k_dem_on, k_dcm_standby, k_apps_standby, k_dem_standby}},
        Course{"Late_DCM_of_a_resume",
               "Rc1c1SC1c1c1c0",
               {k_dem_on, k_apps_on, k_dcm_on, k_dcm_standby, k_apps_standby, k_dem_standby}},
        // The second resume is at DCM again, but its own request has not completed.
        Course{"Late_DCM_of_a_resume_that_another_replaced",
               "Rc1c1SRc1C1c0",
               {k_dem_on, k_apps_on, k_dcm_on, k_dcm_standby, k_dcm_on}},
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

// Resumes and steps in any order, standbys as the states ask for them, when a resume has ended, and answers to any
// request, also to one that was replaced.
TEST_F(Sequence, Ends_with_everybody_in_the_mode_that_was_wanted_last_whatever_came_before) {
    std::mt19937 random(1);
    auto const below = [&random](std::size_t end) { return static_cast<std::size_t>(random()) % end; };
    bool standby = false;
    std::size_t answered = 0;
    for (int run = 0; run < 300; ++run) {
        auto& requests = server->requests;
        for (auto events = below(15); events > 0; --events) {
            switch (below(5)) {
                case 0:
                    if (sut.check_request_status() == 0 && !standby) {
                        sut.request_standby();
                        standby = true;
                    }
                    break;
                case 1:
                    sut.request_resume();
                    standby = false;
                    break;
                case 2:
                    sut.check_request_status();
                    break;
                default:
                    if (answered < requests.size()) {
                        std::swap(requests[answered].completed,
                                  requests[answered + below(requests.size() - answered)].completed);
                        requests[answered++].completed(Callback_status::succeeded, {});
                    }
            }
        }
        for (int rounds = 0; sut.check_request_status() != 0; ++rounds) {
            ASSERT_LT(rounds, 10);
            for (; answered < requests.size(); ++answered) {
                requests[answered].completed(Callback_status::failed, {});
            }
        }
        std::map<std::string, std::string> modes;
        for (auto const& [group, mode] : steps()) {
            modes[group] = mode;
        }
        for (auto const& [group, mode] : modes) {
            ASSERT_EQ(mode, standby ? "kPrepSD" : "kOn") << group << " in run " << run;
        }
        ASSERT_TRUE(!standby || modes.size() == 3);
    }
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
