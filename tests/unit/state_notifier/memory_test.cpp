#include "notifier_fixture.h"
#include "support/no_memory.h"

namespace ximo::ap::statemanager::state_notifier {
namespace {

using client_state_notifier::Callback_status;
using client_state_notifier::Component_client_return_type;
using testing::Contains;

TEST_F(Notifier_test, Whichever_memory_for_results_is_refused_the_sequence_goes_on_and_no_half_of_them_is_kept) {
    Client_results const results{{"diag::dcm", Component_client_return_type::succeeded},
                                 {"a name that is too long for a place in the text", {}},
                                 {"another name that is too long for one", {}}};
    bool is_lacking = true;
    for (int given = 0; is_lacking; ++given) {
        SCOPED_TRACE(given);
        sut.request_standby();
        {
            test_support::No_memory const lack(given);
            EXPECT_NO_THROW(complete(Callback_status::succeeded, results));
            is_lacking = lack.was_met();
        }
        EXPECT_EQ(sut.get_dcm_clients_status(), is_lacking ? Client_results{} : results);
        EXPECT_EQ(sut.check_request_status(), 1U);
        EXPECT_EQ(steps().back(), k_apps_standby);
    }
    EXPECT_THAT(log.messages(),
                Contains(test_support::logged(ara::log::LogLevel::kError, "no memory for the results of the clients")));
}

}  // namespace
}  // namespace ximo::ap::statemanager::state_notifier
