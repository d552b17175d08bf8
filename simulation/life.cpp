#include "simulation/life.h"

#include "simulation/log.h"
#include "simulation/rules.h"
#include "statemanager/config/json_conversion.h"
#include "statemanager/config/state_manager_config.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "statemanager/em/em_interface.h"
#include "statemanager/service_handler/nm_interface.h"
#include "statemanager/service_handler/service_handler.h"
#include "statemanager/services/services_of.h"
#include "statemanager/services/state_manager_com_alive_interface.h"
#include "statemanager/services/state_manager_cwu_interface.h"
#include "statemanager/state_manager.h"
#include "statemanager/states/state_interface.h"
#include "statemanager/virtio/virtio_interface.h"

#include <algorithm>
#include <exception>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace simulation {

namespace sm = ximo::ap::statemanager;

namespace {

constexpr char const* k_power_off_channel = "/run/adaptive/poweroff";

Clients* clients_of_life = nullptr;

/// False, and a reason in the log, for a configuration that the daemon refuses.
bool parse(std::string const& text, sm::config::State_manager_config& configuration) {
    auto const root = sm::config::parse_document(text);
    auto const member = sm::config::State_manager_json_parser::get_json_object(root, "ap_statemanager");
    return sm::config::State_manager_json_parser::read_state_manager_configuration(member, configuration);
}

/// Without the name that the JSON library gives an error.
std::string in_words(std::string why) {
    auto const begin = why.find("[json.exception.");
    auto const end = why.find("] ", begin);
    return begin == std::string::npos || end == std::string::npos ? why : why.erase(begin, end + 2 - begin);
}

/// The real queue of commands; what it offers is remembered, and a wait can be heard of.
class Input final : public sm::virtio::Virtio_interface_abstract {
 public:
    Input(Hypervisor& hypervisor, std::function<void()> on_wait, sm::virtio::Virtio_command& offered)
        : hypervisor_(hypervisor), queue_(hypervisor), on_wait_(std::move(on_wait)), offered_(offered) {}

    bool init(std::string device_directory) override { return queue_.init(std::move(device_directory)); }
    sm::virtio::Virtio_command get_command(unsigned int timeout_ms) override {
        if (on_wait_) {
            on_wait_();
        }
        hypervisor_.begin_cycle();
        return offered_ = queue_.get_command(timeout_ms);
    }
    void command_consumed() override { queue_.command_consumed(); }

 private:
    Hypervisor& hypervisor_;
    sm::virtio::Virtio_interface queue_;
    std::function<void()> on_wait_;
    sm::virtio::Virtio_command& offered_;
};

/// The real one, up to its request.
class Execution_management final : public sm::Em_interface {
 public:
    explicit Execution_management(Service_manager& service_manager) : service_manager_(service_manager) {}

    ara::exec::State_client_result StateClient_SetState(std::string const& function_group,
                                                        std::string const& state) override {
        switch (service_manager_.answer(state)) {
            case Service_manager::Manner::grants:
                return Em_interface::StateClient_SetState(function_group, state);
            case Service_manager::Manner::refuses:
                return ara::exec::State_client_result::kRefused;
            default:
                throw std::runtime_error("nobody answers");
        }
    }

 private:
    Service_manager& service_manager_;
};

/// Notes how long the driver's cycles take.
class Supervision final : public sm::phm::Supervision_manager_interface {
 public:
    Supervision(Stage const& stage, std::uint64_t& cycles, Time& longest)
        : stage_(stage), cycles_(cycles), longest_(longest) {}

    void report_alive_status() override {
        longest_ = std::max(longest_, stage_.now() - last_);
        last_ = stage_.now();
        ++cycles_;
    }

 private:
    Stage const& stage_;
    std::uint64_t& cycles_;
    Time& longest_;
    Time last_{0};
};

}  // namespace

class Life::Daemon {
 public:
    explicit Daemon(Life_options options);
    ~Daemon();

    void run(Time until);
    void terminate();

    Life_options const options_;
    Timeline timeline_;
    Stage stage_{[this](Entry entry) { note(std::move(entry)); }};
    Log_listener log_{[this](std::string_view level, std::string_view text) { heard(level, text); }};
    sm::config::State_manager_config configuration_;
    Control_files files_{stage_};
    Hypervisor hypervisor_{stage_};
    Clients clients_{stage_};
    Network network_{stage_};
    Applications applications_{stage_, network_};
    Service_manager service_manager_{stage_};
    std::string state_;
    std::uint64_t cycles_{0};
    Time longest_cycle_{0};

 private:
    void note(Entry entry);
    void read_configuration();
    void add_control_files();
    void heard(std::string_view level, std::string_view text);
    void enter(std::string_view from, std::string_view to);
    void power_off_line(std::string_view line);

    sm::virtio::Virtio_command offered_{sm::virtio::Virtio_command::none};
    std::string last_message_;  ///< that was logged while the configuration was read
    std::unique_ptr<sm::State_manager> driver_;
};

Life::Daemon::Daemon(Life_options options) : options_(std::move(options)) {
    read_configuration();
    clients_of_life = &clients_;
    sm::states::State_interface::set_prepare_SD_flag(false);
    sm::states::State_interface::set_forced_shutdown_flag(false);
    add_control_files();
    auto service_handler = std::make_shared<sm::Service_handler>(
        configuration_, std::make_unique<sm::Nm_interface>(),
        sm::services_of<sm::State_manager_com_alive_interface, sm::State_manager_com_alive_interface_abstract>(
            configuration_.get_apps_comalive()),
        sm::services_of<sm::State_manager_cwu_interface, sm::State_manager_cwu_interface_abstract>(
            configuration_.get_apps_cwu()));
    driver_ = std::make_unique<sm::State_manager>(configuration_, service_handler,
                                                  std::make_shared<Execution_management>(service_manager_),
                                                  std::make_unique<Input>(hypervisor_, options_.on_wait, offered_),
                                                  std::make_unique<Supervision>(stage_, cycles_, longest_cycle_));
}

Life::Daemon::~Daemon() {
    driver_.reset();
    clients_of_life = nullptr;
}

// What the daemon would have logged last is the reason.
void Life::Daemon::read_configuration() {
    std::string why;
    try {
        if (parse(options_.configuration, configuration_)) {
            return;
        }
        why = last_message_;
    } catch (std::exception const& error) {
        why = error.what();
    }
    throw std::runtime_error("the daemon refuses the configuration: " + in_words(why));
}

void Life::Daemon::add_control_files() {
    auto const word = [this](Kind kind) {
        return [this, kind](std::string_view bytes, Control_files::Manner manner) {
            auto const* const fate = manner == Control_files::Manner::takes     ? "written"
                                     : manner == Control_files::Manner::refuses ? "refused"
                                                                                : "unheard";
            stage_.note(kind, fate, std::string(bytes));
        };
    };
    files_.add(configuration_.get_smw_update_status_path(), word(Kind::word));
    files_.add(configuration_.get_smw_restart_command_path(), word(Kind::restart));
    files_.add(k_power_off_channel,
               [this](std::string_view bytes, Control_files::Manner /*manner*/) { power_off_line(bytes); });
    if (!options_.channel_is_there) {
        files_.behave(k_power_off_channel, Control_files::Manner::missing);
    }
}

void Life::Daemon::note(Entry entry) {
    if (options_.observer) {
        options_.observer(entry);
    }
    timeline_.push_back(std::move(entry));
}

// The driver's log tells of its transitions.
void Life::Daemon::heard(std::string_view level, std::string_view text) {
    constexpr std::string_view k_transition = "AP_StateManger transition from ";
    if (text.substr(0, k_transition.size()) == k_transition) {
        auto const states = text.substr(k_transition.size());
        auto const middle = states.find("  to  ");
        enter(states.substr(0, middle), states.substr(middle + 6));
    }
    if (level != "verbose" && driver_ == nullptr) {
        last_message_ = text;
    }
    if (options_.with_log) {
        stage_.note(Kind::log, std::string(level), std::string(text));
    }
}

void Life::Daemon::enter(std::string_view from, std::string_view to) {
    state_ = to;
    stage_.note(
        Kind::state, state_,
        cause_of(std::string(from), state_, static_cast<unsigned>(offered_), configuration_.is_nm_usage_allowed()));
}

void Life::Daemon::power_off_line(std::string_view line) {
    std::string const text(line.substr(0, line.find('\n')));
    stage_.note(Kind::power_off, "", text);
    if (text.rfind("poweroff", 0) == 0) {
        stage_.events().after(options_.power_off_takes, [this] {
            stage_.end("power off");
            driver_->shutdown();
        });
    }
}

void Life::Daemon::run(Time until) {
    state_ = "Starting up";
    stage_.note(Kind::state, state_, "the start");
    if (options_.manager_is_there) {
        network_.offer();
    }
    stage_.events().at(until, [this] {
        stage_.end(k_end_of_the_look);
        driver_->shutdown();
    });
    if (driver_->init()) {
        driver_->run();
    }
    stage_.end(k_end_of_the_daemon);
}

void Life::Daemon::terminate() {
    stage_.note(Kind::neighbour, "service manager", "stops the daemon");
    driver_->shutdown();
}

Life::Life(Life_options options) : daemon_(std::make_unique<Daemon>(std::move(options))) {}
Life::~Life() = default;

void Life::run(Time until) {
    daemon_->run(until);
}
void Life::terminate() {
    daemon_->terminate();
}
Event_queue& Life::events() {
    return daemon_->stage_.events();
}
Hypervisor& Life::hypervisor() {
    return daemon_->hypervisor_;
}
Clients& Life::clients() {
    return daemon_->clients_;
}
Network& Life::network() {
    return daemon_->network_;
}
Applications& Life::applications() {
    return daemon_->applications_;
}
Service_manager& Life::service_manager() {
    return daemon_->service_manager_;
}
void Life::status_file(Control_files::Manner manner, Time after) {
    daemon_->files_.behave(daemon_->configuration_.get_smw_update_status_path(), manner, after);
}
void Life::restart_file(Control_files::Manner manner, Time after) {
    daemon_->files_.behave(daemon_->configuration_.get_smw_restart_command_path(), manner, after);
}
void Life::note(std::string const& who, std::string const& what) {
    daemon_->stage_.note(Kind::neighbour, who, what);
}
Timeline const& Life::timeline() const {
    return daemon_->timeline_;
}
std::string const& Life::state() const {
    return daemon_->state_;
}
bool Life::intends_to_suspend() const {
    return sm::states::State_interface::get_prepare_SD_flag();
}
std::uint64_t Life::cycles() const {
    return daemon_->cycles_;
}
Time Life::longest_cycle() const {
    return daemon_->longest_cycle_;
}

}  // namespace simulation

namespace client_state_notifier {

// The notifier's server, in this program.
std::unique_ptr<Client_states> create_client_states(std::string const& current_state,
                                                    Status_callback const& status_callback) {
    return simulation::clients_of_life->serve(current_state, status_callback);
}

}  // namespace client_state_notifier
