#ifndef BENCH_VEHICLE_VEHICLE_H
#define BENCH_VEHICLE_VEHICLE_H

#include "bench/process/player.h"
#include "bench/process/private_bus.h"
#include "bench/vehicle/client_players.h"
#include "bench/vehicle/dlt_reader.h"
#include "bench/vehicle/machine.h"
#include "bench/vehicle/power_off_service.h"
#include "bench/vehicle/surroundings.h"

#include <chrono>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bench::vehicle {

/// What a machine is made of; the defaults are the complete one.
struct Options {
    std::string programs;       ///< directory of the build that holds the daemon and the players
    std::string configuration;  ///< JSON text of the daemon's configuration
    std::string configuration_name{"ap_statemanager.json"};
    std::string host_name{"adaptive-apps-vm"};
    unsigned devices{1};
    bool with_log{true};
    bool with_service_manager{true};
    bool with_notify_socket{true};  ///< of the service manager, told to the daemon
    bool with_power_off_service{true};
    std::vector<std::string> clients{"diag::dcm", "navigation", "radio", "diag::dem"};  ///< that take part in suspends
    bool with_network{false};      ///< nodes, and an application for each instance name in the configuration
    std::ostream* trace{nullptr};  ///< gets the log as a log viewer stores it, if there is one
    std::vector<std::string> daemon_starter{};  ///< program, and its arguments, that becomes the daemon; empty for none
};

/// The machine around one daemon: hypervisor, service manager, log, power-off service and clients, each a process or a
/// file of the kind that the daemon meets in a vehicle. Inside a world (world.h) only, one at a time; used by one
/// thread.
///
///     Vehicle vehicle(options);
///     vehicle.start_daemon();
///     vehicle.press("p");
///     vehicle.await(Kind::state_word, "prepared4sd");
class Vehicle : public Machine {
 public:
    explicit Vehicle(Options options);

    /// A daemon that still runs is stopped as a service manager does it, by SIGTERM; any status but 0 is an end that
    /// nobody asked for.
    ~Vehicle() override;

    void start_daemon() override;
    void press(std::string const& key) override;
    void signal_daemon(int number) override { daemon_->signal(number); }
    nlohmann::json tell(std::string const& neighbour, nlohmann::json const& command) override;
    void change_configuration(nlohmann::json const& changes) override;
    std::vector<std::string> applications() const override;
    std::vector<Client_status> clients() const override { return clients_->statuses(); }

    /// The exit status; nothing when the daemon still runs after the time.
    std::optional<int> await_end(std::chrono::milliseconds limit = k_patience);

    /// Whether the daemon has ended and nobody has awaited it.
    bool has_ended_unawaited();

    void update(std::chrono::milliseconds limit) override;

    Player& hypervisor() { return *hypervisor_; }
    Player& service_manager() { return *service_manager_; }
    Surroundings& surroundings() { return *surroundings_; }
    Private_bus& bus() { return *bus_; }
    Dlt_reader& log() { return *log_; }
    Child_process& daemon() { return *daemon_; }

    /// A process of the machine: "daemon", "service manager", "bus", "log daemon", or one of the neighbours or clients
    /// by its name. Throws `std::runtime_error` for a name that nobody has, and for one that does not run.
    Child_process& process(std::string const& name);

    /// Ends one of the neighbours on the network or applications, the "log daemon", or the "bus" and the service
    /// manager with it, at once, as if it had crashed, and starts it again.
    void kill(std::string const& name);
    void revive(std::string const& name);

 private:
    std::string program(char const* folder, char const* name) const;
    void start_bus();
    void start_log();
    void install_configuration(std::string const& text) const;
    std::vector<int> sources() const;
    void hear_news(Player& player, std::size_t& seen, Timeline (*meaning)(nlohmann::json const& message));
    void note_end();
    void hear_the_rest();

    Options options_;
    std::string bus_address_;
    std::unique_ptr<Private_bus> bus_;
    std::unique_ptr<Player> hypervisor_;
    std::unique_ptr<Player> service_manager_;
    std::unique_ptr<Dlt_reader> log_;
    std::unique_ptr<Power_off_service> power_off_;
    std::unique_ptr<Client_players> clients_;
    std::unique_ptr<Surroundings> surroundings_;
    std::unique_ptr<Child_process> daemon_;
    std::optional<int> exit_status_;
    bool is_end_awaited_{false};
    std::size_t hypervisor_seen_{0};
    std::size_t service_manager_seen_{0};
};

}  // namespace bench::vehicle

#endif
