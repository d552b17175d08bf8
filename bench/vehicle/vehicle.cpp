#include "bench/vehicle/vehicle.h"

#include "bench/json_lines/clock.h"
#include "bench/vehicle/world.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <utility>

#include <poll.h>

namespace bench::vehicle {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds k_quiet{100};  // as long as a busy machine may keep a player waiting
constexpr char const* k_notify_socket = "/run/notify";

std::string machine_state_of(std::string const& unit) {
    constexpr std::string_view prefix = "MachineState-";
    constexpr std::string_view suffix = ".target";
    if (unit.rfind(prefix, 0) != 0 || unit.size() < prefix.size() + suffix.size()) {
        return unit;
    }
    return unit.substr(prefix.size(), unit.size() - prefix.size() - suffix.size());
}

}  // namespace

Vehicle::Vehicle(Options options) : options_(std::move(options)) {
    set_host_name(options_.host_name);
    install_configuration();
    fs::create_directories("/run/dbus");
    auto const program = [this](char const* folder, char const* name) {
        return (fs::path(options_.programs) / "bench" / folder / name).string();
    };
    hypervisor_ = std::make_unique<Player>(std::vector<std::string>{
        program("hypervisor", "bench_hypervisor"), "--devices", std::to_string(options_.devices), k_hypervisor});
    if (options_.with_service_manager) {
        bus_ = std::make_unique<Private_bus>("/run/dbus");
        service_manager_ = std::make_unique<Player>(
            std::vector<std::string>{program("service_manager", "bench_service_manager"), k_notify_socket},
            std::vector<std::string>{"DBUS_SYSTEM_BUS_ADDRESS=" + bus_->address()});
    }
    if (options_.with_log) {
        log_ = std::make_unique<Dlt_reader>();
    }
    if (options_.with_power_off_service) {
        power_off_ = std::make_unique<Power_off_service>();
    }
}

Vehicle::~Vehicle() {
    if (daemon_ && !exit_status_) {
        daemon_->signal(SIGKILL);
    }
}

void Vehicle::install_configuration() const {
    fs::remove_all("/etc/adaptive");
    fs::create_directories("/etc/adaptive");
    if (!options_.configuration.empty()) {
        std::ofstream(fs::path("/etc/adaptive") / options_.configuration_name) << options_.configuration;
    }
}

void Vehicle::start_daemon() {
    std::vector<std::string> environment{"WATCHDOG_USEC=2000000"};
    if (options_.with_service_manager && options_.with_notify_socket) {
        environment.push_back(std::string("NOTIFY_SOCKET=") + k_notify_socket);
    }
    if (options_.with_service_manager) {
        environment.push_back("DBUS_SYSTEM_BUS_ADDRESS=" + bus_->address());
    }
    exit_status_.reset();
    auto words = options_.daemon_starter;
    words.push_back((fs::path(options_.programs) / "src/main/ap_statemanager").string());
    daemon_ = std::make_unique<Child_process>(words, environment);
}

void Vehicle::press(std::string const& key) {
    auto const answer = hypervisor_->command({{"do", "press"}, {"key", key}});
    add({answer.at("t").get<std::int64_t>(), Kind::key, key});
}

std::optional<int> Vehicle::await_end(std::chrono::milliseconds limit) {
    auto const deadline = std::chrono::steady_clock::now() + limit;
    do {
        update(k_poll);
    } while (!exit_status_ && std::chrono::steady_clock::now() < deadline);
    if (exit_status_) {
        take_the_rest();
    }
    return exit_status_;
}

// What the log daemon and the service manager still have to tell when the daemon itself has gone.
void Vehicle::take_the_rest() {
    auto const start = std::chrono::steady_clock::now();
    auto last_news = start;
    auto seen = events().size();
    for (auto now = start; now - last_news < k_quiet && now - start < k_patience;
         now = std::chrono::steady_clock::now()) {
        update(k_poll);
        if (events().size() != seen) {
            seen = events().size();
            last_news = now;
        }
    }
}

void Vehicle::update(std::chrono::milliseconds limit) {
    std::array<pollfd, 2> sources{{{hypervisor_->process().output(), POLLIN, 0},
                                   {service_manager_ ? service_manager_->process().output() : -1, POLLIN, 0}}};
    ::poll(sources.data(), sources.size(), static_cast<int>(std::min(limit, k_poll).count()));
    take_from_hypervisor();
    take_from_service_manager();
    if (log_) {
        for (auto& message : log_->take()) {
            add(std::move(message));
        }
    }
    if (power_off_) {
        for (auto& command : power_off_->take()) {
            add({monotonic_ns(), Kind::power_off, std::move(command)});
        }
    }
    take_end();
}

void Vehicle::take_from_hypervisor() {
    auto const& messages = hypervisor_->log().messages();
    for (; hypervisor_seen_ < messages.size(); ++hypervisor_seen_) {
        auto const& message = messages[hypervisor_seen_];
        if (has_members(message, {{"event", "write"}})) {
            bool const is_status = message.at("file") == "set_status";
            add({message.at("t").get<std::int64_t>(), is_status ? Kind::state_word : Kind::restart_word,
                 message.at("text").get<std::string>()});
        }
    }
}

void Vehicle::take_from_service_manager() {
    if (!service_manager_) {
        return;
    }
    auto const& messages = service_manager_->log().messages();
    for (; service_manager_seen_ < messages.size(); ++service_manager_seen_) {
        auto const& message = messages[service_manager_seen_];
        if (has_members(message, {{"event", "call"}, {"method", "StartUnit"}})) {
            add({message.at("t").get<std::int64_t>(), Kind::machine_state,
                 machine_state_of(message.at("unit").get<std::string>())});
        } else if (has_members(message, {{"event", "notify"}})) {
            for (auto const& [variable, value] : message.at("variables").items()) {
                auto const kind = variable == "WATCHDOG" ? Kind::watchdog : Kind::notification;
                add({message.at("t").get<std::int64_t>(), kind, variable});
            }
        }
    }
}

void Vehicle::take_end() {
    if (daemon_ && !exit_status_) {
        exit_status_ = daemon_->wait({});
        if (exit_status_) {
            add({monotonic_ns(), Kind::ended, std::to_string(*exit_status_)});
        }
    }
}

}  // namespace bench::vehicle
