#include "statemanager/absent_collaborators.h"

namespace ximo::ap::statemanager {

namespace {

class Absent_service_handler : public Service_handler_interface {
 public:
    bool init() override { return false; }
    void deinit() override {}
    bool nm_interface_available() const override { return false; }
    bool apps_keep_com_alive() const override { return false; }
    bool apps_keep_ecu_alive() const override { return false; }
    bool is_network_in_use() const override { return false; }
    bool ecu_in_sleep_mode() const override { return false; }
    void request_network() override {}
    void release_network() override {}
    void standby() override {}
    void end_standby() override {}
};

class Absent_execution_management : public Em_interface_abstract {
 public:
    void request_shutdown() override {}
    void request_running() override {}
    bool check_for_running_state() override { return false; }
    ara::exec::State_client_result StateClient_SetState(std::string const& /*function_group*/,
                                                        std::string const& /*state*/) override {
        return ara::exec::State_client_result::kRefused;
    }
    ara::exec::State_client_result GetState(std::string const& /*function_group*/, std::string& /*state*/,
                                            ara::exec::Function_group_state_transition& /*transition*/) override {
        return ara::exec::State_client_result::kRefused;
    }
};

class Absent_state_notifier : public state_notifier::State_notifier_interface {
 public:
    void request_standby() override {}
    void request_resume() override {}
    unsigned int check_request_status() override { return 0; }
};

template <class Absent, class Interface>
std::shared_ptr<Interface> given_or(std::shared_ptr<Interface> given) {
    return given ? std::move(given) : std::make_shared<Absent>();
}

}  // namespace

std::shared_ptr<Service_handler_interface> or_absent(std::shared_ptr<Service_handler_interface> service_handler) {
    return given_or<Absent_service_handler>(std::move(service_handler));
}

std::shared_ptr<Em_interface_abstract> or_absent(std::shared_ptr<Em_interface_abstract> execution_management) {
    return given_or<Absent_execution_management>(std::move(execution_management));
}

std::shared_ptr<state_notifier::State_notifier_interface> or_absent(
    std::shared_ptr<state_notifier::State_notifier_interface> state_notifier) {
    return given_or<Absent_state_notifier>(std::move(state_notifier));
}

}  // namespace ximo::ap::statemanager
