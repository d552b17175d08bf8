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

}  // namespace
}  // namespace client_state_notifier
