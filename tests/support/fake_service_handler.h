#ifndef TESTS_SUPPORT_FAKE_SERVICE_HANDLER_H
#define TESTS_SUPPORT_FAKE_SERVICE_HANDLER_H

#include "statemanager/service_handler_interface.h"

#include <functional>
#include <string>
#include <vector>

namespace test_support {

/// Network and applications whose conditions a test sets, and which note in `actions` what was asked of them.
class Fake_service_handler : public ximo::ap::statemanager::Service_handler_interface {
 public:
    bool nm_found{false};
    bool com_alive{false};
    bool ecu_alive{false};
    bool sleeping{false};
    bool init_succeeds{true};
    std::vector<std::string> actions;
    std::function<void(std::string const&)> listener = [](auto const& /*action*/) {};  ///< told of each action at once

    bool init() override {
        note("init");
        return init_succeeds;
    }
    void deinit() override { note("deinit"); }
    bool nm_interface_available() const override { return nm_found; }
    bool apps_keep_com_alive() const override { return com_alive; }
    bool apps_keep_ecu_alive() const override { return ecu_alive; }
    bool is_network_in_use() const override { return com_alive || ecu_alive; }
    bool ecu_in_sleep_mode() const override { return sleeping; }
    void request_network() override { note("request_network"); }
    void release_network() override { note("release_network"); }
    void standby() override { note("standby"); }
    void end_standby() override { note("end_standby"); }

 private:
    void note(std::string const& action) {
        actions.push_back(action);
        listener(action);
    }
};

}  // namespace test_support

#endif
