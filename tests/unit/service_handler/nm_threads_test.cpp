// The client of network management among threads of the binding: lookups that report at the same moment and before
// their handles are known, and a receive handler that runs while the client goes.

#include "statemanager/service_handler/nm_interface.h"
#include "support/log_capture.h"
#include "threaded_binding.h"

#include <atomic>
#include <thread>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::UnorderedElementsAre;

TEST(Nm_threads, Announce_once_and_stop_both_lookups_that_end_at_the_same_moment) {
    for (int run = 0; run < 300; ++run) {
        test_support::Log_capture log;
        auto const binding = std::make_shared<Threaded_binding>();
        auto const previous = ara::com::use_binding(binding);
        std::atomic<int> announced{0};
        {
            Nm_interface sut;
            sut.start_find_services([&] { ++announced; });
            binding->join();
        }
        ara::com::use_binding(previous);

        ASSERT_EQ(announced, 1);
        for (auto const& lookup : binding->lookups) {
            ASSERT_TRUE(lookup->stopped);
        }
        ASSERT_THAT(log.messages(),
                    UnorderedElementsAre(logged(LogLevel::kInfo, "Found NetworkState service"),
                                         logged(LogLevel::kInfo, "Found UserData service"),
                                         logged(LogLevel::kInfo, "Stopping NetworkState service lookup"),
                                         logged(LogLevel::kInfo, "Stopping UserData service lookup")));
    }
}

TEST(Nm_threads, Keep_the_client_until_the_receive_handler_that_runs_has_ended) {
    auto const binding = std::make_shared<Threaded_binding>();
    auto const previous = ara::com::use_binding(binding);
    std::atomic<bool> handling{false};
    std::atomic<bool> handled{false};
    auto sut = std::make_unique<Nm_interface>();
    sut->set_network_state_updated_func([&](auto const& /*state*/) {
        handling = true;
        EXPECT_TRUE(binding->await_end_of_subscription());
        handled = true;
    });
    sut->start_find_services([] {});
    binding->join();
    auto node = binding->send({0x01});
    while (!handling) {
        std::this_thread::yield();
    }

    sut.reset();

    EXPECT_TRUE(handled);
    node.join();
    ara::com::use_binding(previous);
}

}  // namespace
}  // namespace ximo::ap::statemanager
