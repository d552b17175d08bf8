#include "statemanager/service_handler/service_search.h"

#include "support/log_capture.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "threaded_binding.h"

#include <chrono>
#include <future>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;

TEST(Service_search_test, Waits_for_the_handler_also_when_the_handler_has_stopped_the_lookup_itself) {
    test_support::Log_capture log;
    auto const binding = std::make_shared<Threaded_binding>(1);
    auto const previous = ara::com::use_binding(binding);
    Service_search<tarq::udpnm::interface::proxy::NetworkStateInterfaceProxy> sut("stopping");
    std::promise<void> started;
    std::promise<void> stopped;
    std::promise<void> open;
    sut.start([&](ara::com::ServiceHandleContainer const& /*handles*/) {
        started.get_future().wait();
        sut.stop();
        stopped.set_value();
        open.get_future().wait();
    });
    started.set_value();
    stopped.get_future().wait();

    auto second = std::async(std::launch::async, [&] { sut.stop(); });
    auto third = std::async(std::launch::async, [&] { sut.stop(); });

    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_EQ(third.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    open.set_value();
    second.get();
    third.get();
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "stopping")));
    binding->join();
    ara::com::use_binding(previous);
}

}  // namespace
}  // namespace ximo::ap::statemanager
