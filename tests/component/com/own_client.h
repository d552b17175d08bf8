#ifndef TESTS_COMPONENT_COM_OWN_CLIENT_H
#define TESTS_COMPONENT_COM_OWN_CLIENT_H

#include "client_fixture.h"
#include "peer_services.h"

#include <future>
#include <optional>

namespace com_test {

/// A process that is client and server of itself.
class Own_client : public testing::Test {
 protected:
    void start() { runtime_.emplace(false, ""); }
    void end() { runtime_.reset(); }

    std::optional<tarq::com::runtime::Component_singleton> runtime_{std::in_place, false, ""};
    Seen<nlohmann::json> told_;
    std::promise<void> open_;
    std::shared_future<void> gate_{open_.get_future()};
    Tell tell_ = [this](auto const& event) { told_.add(event); };
};

}  // namespace com_test

#endif
