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

/// A control file that takes every word.
class Absent_shared_memory : public smw::Shared_memory_update {
 public:
    Absent_shared_memory() : Shared_memory_update("/dev/null") {}
};

class Absent_fast_shutdown : public fast_shutdown::Fast_shutdown_handler {
 public:
    Absent_fast_shutdown() : Fast_shutdown_handler("/dev/null") {}
    void process_lookup() const override {}
    void start_fast_shutdown(std::chrono::milliseconds /*timeout*/) const override {}
    bool is_possible() const override { return false; }
};

class Absent_virtual_input : public virtio::Virtio_interface_abstract {
 public:
    bool init(std::string /*device_directory*/) override { return true; }
    virtio::Virtio_command get_command(unsigned int /*timeout_ms*/) override { return virtio::Virtio_command::none; }
    void command_consumed() override {}
};

class Absent_supervision : public phm::Supervision_manager_interface {
 public:
    void report_alive_status() override {}
};

template <class Absent, class Interface>
std::shared_ptr<Interface> given_or(std::shared_ptr<Interface> given) {
    if (!given) {
        given = std::make_shared<Absent>();
    }
    return given;
}

template <class Absent, class Interface>
std::unique_ptr<Interface> given_or(std::unique_ptr<Interface> given) {
    if (!given) {
        given = std::make_unique<Absent>();
    }
    return given;
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

std::shared_ptr<smw::Shared_memory_update> or_absent(std::shared_ptr<smw::Shared_memory_update> shared_memory) {
    return given_or<Absent_shared_memory>(std::move(shared_memory));
}

std::shared_ptr<fast_shutdown::Fast_shutdown_handler> or_absent(
    std::shared_ptr<fast_shutdown::Fast_shutdown_handler> fast_shutdown) {
    return given_or<Absent_fast_shutdown>(std::move(fast_shutdown));
}

std::unique_ptr<virtio::Virtio_interface_abstract> or_absent(
    std::unique_ptr<virtio::Virtio_interface_abstract> virtual_input) {
    return given_or<Absent_virtual_input>(std::move(virtual_input));
}

std::unique_ptr<phm::Supervision_manager_interface> or_absent(
    std::unique_ptr<phm::Supervision_manager_interface> supervision) {
    return given_or<Absent_supervision>(std::move(supervision));
}

}  // namespace ximo::ap::statemanager
