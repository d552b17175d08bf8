#include "client_state_notifier/notification_cycle.h"

#include "support/log_capture.h"
#include "support/no_memory.h"

#include <gmock/gmock.h>

namespace client_state_notifier {
namespace {

TEST(Notification_cycle_test, Ends_once_and_timed_out_whichever_memory_for_its_results_is_refused) {
    test_support::Log_capture log;
    bool is_lacking = true;
    for (int given = 0; is_lacking; ++given) {
        SCOPED_TRACE(given);
        int ends = 0;
        auto status = Callback_status::succeeded;
        std::size_t results = 0;
        auto const completed = [&](Callback_status of_all, Client_results const& of_each) {
            ++ends;
            status = of_all;
            results = of_each.size();
        };
        Notification_cycle sut({"kPrepSD", {}, completed, {}, 0});
        sut.ask(1, "a name that is too long for a place in the text");
        sut.ask(2, "another name that is too long for one");
        {
            test_support::No_memory const lack(given);
            EXPECT_NO_THROW(sut.time_out());
            is_lacking = lack.was_met();
        }
        EXPECT_EQ(ends, 1);
        EXPECT_EQ(status, Callback_status::timed_out);
        EXPECT_EQ(results == 2, !is_lacking);
    }
    EXPECT_THAT(log.messages(),
                testing::Contains(test_support::logged_in("SNCC", ara::log::LogLevel::kError,
                                                          "no memory for the results of a request for ", "kPrepSD")));
}

// Whatever their connections' numbers are and in whichever order they were asked and answer.
TEST(Notification_cycle_test, Is_complete_when_each_that_was_asked_and_stayed_has_answered_once) {
    Client_results results;
    Notification_cycle sut({"kPrepSD", {}, [&](auto, auto const& of_each) { results = of_each; }, {}, 0});
    for (int const connection : {9, 4, 700}) {
        sut.ask(connection, "client " + std::to_string(connection));
    }
    for (int const connection : {0, 4, 4, 5, 9, 701}) {
        sut.answer(connection, Component_client_return_type::succeeded);
        EXPECT_FALSE(sut.is_complete()) << connection;
    }
    sut.lose(700);
    sut.answer(700, Component_client_return_type::succeeded);
    EXPECT_FALSE(sut.is_complete()) << "who has gone does not answer any more";
    sut.time_out();
    EXPECT_THAT(results, testing::ElementsAre(testing::Pair("client 4", Component_client_return_type::succeeded),
                                              testing::Pair("client 700", Component_client_return_type::timed_out),
                                              testing::Pair("client 9", Component_client_return_type::succeeded)));
}

}  // namespace
}  // namespace client_state_notifier
