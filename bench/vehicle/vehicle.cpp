#include "bench/vehicle/vehicle.h"

#include "bench/json_lines/clock.h"
#include "bench/process/unasked_end.h"
#include "bench/vehicle/player_events.h"
#include "bench/vehicle/world.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <utility>

#include <poll.h>

namespace bench::vehicle {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds k_quiet{100};  // as long as a busy machine may keep a player waiting
constexpr std::chrono::seconds k_stop{20};         // the daemon's end waits for a late service manager, and for its log
constexpr char const* k_notify_socket = "/run/notify";

constexpr int k_all_levels = 6;  // of the log

}  // namespace

Vehicle::Vehicle(Options options) : options_(std::move(options)) {
    set_host_name(options_.host_name);
    install_configuration(options_.configuration);
    fs::create_directories("/run/dbus");
    hypervisor_ = std::make_unique<Player>(std::vector<std::string>{
        program("hypervisor", "bench_hypervisor"), "--devices", std::to_string(options_.devices), k_hypervisor});
    if (options_.with_service_manager) {
        start_bus();
    }
    if (options_.with_log) {
        start_log();
    }
    if (options_.with_power_off_service) {
        power_off_ = std::make_unique<Power_off_service>();
    }
    clients_ = std::make_unique<Client_players>(program("client", "bench_client"), options_.clients);
    clients_->set_limits(nlohmann::json::parse(options_.configuration, nullptr, false));
    if (options_.with_network) {
        surroundings_ =
            std::make_unique<Surroundings>(options_.programs, nlohmann::json::parse(options_.configuration));
    }
}

std::string Vehicle::program(char const* folder, char const* name) const {
    return (fs::path(options_.programs) / "bench" / folder / name).string();
}

void Vehicle::start_bus() {
    bus_ = std::make_unique<Private_bus>("/run/dbus");
    bus_address_ = bus_->address();
    service_manager_ = std::make_unique<Player>(
        std::vector<std::string>{program("service_manager", "bench_service_manager"), k_notify_socket},
        std::vector<std::string>{"DBUS_SYSTEM_BUS_ADDRESS=" + bus_->address()});
    service_manager_seen_ = 0;
}

void Vehicle::start_log() {
    log_ = std::make_unique<Dlt_reader>(k_all_levels, options_.trace);
}

Vehicle::~Vehicle() {
    note_end();
    if (daemon_ && !exit_status_) {
        daemon_->signal(SIGTERM);
        auto const status = daemon_->wait(k_stop);
        if (status != EXIT_SUCCESS) {
            unasked_end("The daemon ended " + (status ? "with status " + std::to_string(*status) : "not at all") +
                        " after SIGTERM");
        }
    }
}

void Vehicle::install_configuration(std::string const& text) const {
    fs::remove_all("/etc/adaptive");
    fs::create_directories("/etc/adaptive");
    if (!text.empty()) {
        std::ofstream(fs::path("/etc/adaptive") / options_.configuration_name) << text;
    }
}

void Vehicle::change_configuration(nlohmann::json const& changes) {
    auto configuration = nlohmann::json::parse(options_.configuration);
    configuration.merge_patch(changes);
    install_configuration(configuration.dump());
    clients_->set_limits(configuration);
}

std::vector<std::string> Vehicle::applications() const {
    return surroundings_ ? surroundings_->applications() : std::vector<std::string>();
}

nlohmann::json Vehicle::tell(std::string const& neighbour, nlohmann::json const& command) {
    if (clients_->has(neighbour)) {
        return clients_->tell(neighbour, command);
    }
    return surroundings_ ? surroundings_->tell(neighbour, command) : Machine::tell(neighbour, command);
}

Child_process& Vehicle::process(std::string const& name) {
    if (name == "daemon") {
        return daemon();
    }
    if (service_manager_ && name == "service manager") {
        return service_manager().process();
    }
    if (bus_ && name == "bus") {
        return bus().process();
    }
    if (log_ && name == "log daemon") {
        return log().daemon();
    }
    return clients_->has(name) ? clients_->process(name) : surroundings().process(name);
}

void Vehicle::kill(std::string const& name) {
    update({});
    if (name == "bus") {
        service_manager_->process().signal(SIGKILL);
        bus_->process().signal(SIGKILL);
        service_manager_.reset();
        bus_.reset();
    } else if (name == "log daemon") {
        log_->daemon().signal(SIGKILL);
        log_.reset();
    } else {
        surroundings().kill(name);
    }
}

void Vehicle::revive(std::string const& name) {
    if (name == "bus") {
        start_bus();
    } else if (name == "log daemon") {
        start_log();
    } else {
        surroundings().start(name);
    }
}

void Vehicle::start_daemon() {
    std::vector<std::string> environment{"WATCHDOG_USEC=2000000"};
    if (options_.with_service_manager && options_.with_notify_socket) {
        environment.push_back(std::string("NOTIFY_SOCKET=") + k_notify_socket);
    }
    if (options_.with_service_manager) {
        environment.push_back("DBUS_SYSTEM_BUS_ADDRESS=" + bus_address_);
    }
    exit_status_.reset();
    is_end_awaited_ = false;
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
        hear_the_rest();
    }
    is_end_awaited_ = daemon_->wait({}).has_value();
    return exit_status_;
}

bool Vehicle::has_ended_unawaited() {
    note_end();
    return exit_status_ && !is_end_awaited_;
}

// What the log daemon and the service manager still have to tell when the daemon itself has gone.
void Vehicle::hear_the_rest() {
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
    std::vector<pollfd> polled;
    for (auto const source : sources()) {
        polled.push_back({source, POLLIN, 0});
    }
    ::poll(polled.data(), polled.size(), static_cast<int>(std::min(limit, k_poll).count()));
    hear_news(*hypervisor_, hypervisor_seen_, &events_of_hypervisor);
    if (service_manager_) {
        hear_news(*service_manager_, service_manager_seen_, &events_of_service_manager);
    }
    if (log_) {
        add_all(log_->take());
    }
    if (power_off_) {
        for (auto& command : power_off_->take()) {
            add({monotonic_ns(), Kind::power_off, std::move(command)});
        }
    }
    add_all(clients_->take());
    if (surroundings_) {
        add_all(surroundings_->take());
    }
    note_end();
}

std::vector<int> Vehicle::sources() const {
    std::vector<int> descriptors{hypervisor_->process().output()};
    if (service_manager_) {
        descriptors.push_back(service_manager_->process().output());
    }
    auto further = clients_->descriptors();
    descriptors.insert(descriptors.end(), further.begin(), further.end());
    if (surroundings_) {
        further = surroundings_->descriptors();
        descriptors.insert(descriptors.end(), further.begin(), further.end());
    }
    return descriptors;
}

void Vehicle::hear_news(Player& player, std::size_t& seen, Timeline (*meaning)(nlohmann::json const&)) {
    auto const& messages = player.log().messages();
    for (; seen < messages.size(); ++seen) {
        add_all(meaning(messages[seen]));
    }
}

void Vehicle::note_end() {
    if (daemon_ && !exit_status_) {
        exit_status_ = daemon_->status();
        if (exit_status_) {
            add({monotonic_ns(), Kind::ended, std::to_string(*exit_status_)});
        }
    }
}

}  // namespace bench::vehicle
