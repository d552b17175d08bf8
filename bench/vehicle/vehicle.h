#ifndef BENCH_VEHICLE_VEHICLE_H
#define BENCH_VEHICLE_VEHICLE_H

#include "bench/process/player.h"
#include "bench/process/private_bus.h"
#include "bench/vehicle/dlt_reader.h"
#include "bench/vehicle/power_off_service.h"
#include "bench/vehicle/timeline.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

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
};

/// The machine around one daemon: hypervisor, service manager, log and power-off service, each a process or a file of
/// the kind that the daemon meets in a vehicle. Inside a world (world.h) only, one at a time; used by one thread.
///
///     Vehicle vehicle(options);
///     vehicle.start_daemon();
///     vehicle.press("p");
///     vehicle.await(Kind::state_word, "prepared4sd");
class Vehicle {
 public:
    static constexpr std::chrono::milliseconds k_patience{5'000};

    explicit Vehicle(Options options);
    ~Vehicle();
    Vehicle(Vehicle const&) = delete;
    Vehicle& operator=(Vehicle const&) = delete;

    void start_daemon();
    void press(std::string const& key);
    void signal_daemon(int number) const { daemon_->signal(number); }

    /// The exit status; nothing when the daemon still runs after the time.
    std::optional<int> await_end(std::chrono::milliseconds limit = k_patience);

    /// Takes in what has happened, and waits up to `limit` for something to happen.
    void update(std::chrono::milliseconds limit = {});

    /// Takes in what happens during that time.
    void watch(std::chrono::milliseconds duration);

    /// Everything so far, in the order in which it became known.
    Timeline const& events() const { return events_; }

    /// Gives away the events so far, for users who run long; positions begin at 0 again.
    Timeline take_events() { return std::exchange(events_, {}); }

    /// Position of the first event of a kind, from position `from` on, whose text is (a log message: begins with)
    /// `text`. Waits up to `limit` for it; nothing when it did not come.
    std::optional<std::size_t> await(Kind kind, std::string const& text, std::size_t from = 0,
                                     std::chrono::milliseconds limit = k_patience);

    Player& hypervisor() { return *hypervisor_; }
    Player& service_manager() { return *service_manager_; }
    Private_bus& bus() { return *bus_; }
    Dlt_reader& log() { return *log_; }
    Child_process& daemon() { return *daemon_; }

 private:
    void install_configuration() const;
    void take_from_hypervisor();
    void take_from_service_manager();
    void take_end();

    Options options_;
    std::unique_ptr<Private_bus> bus_;
    std::unique_ptr<Player> hypervisor_;
    std::unique_ptr<Player> service_manager_;
    std::unique_ptr<Dlt_reader> log_;
    std::unique_ptr<Power_off_service> power_off_;
    std::unique_ptr<Child_process> daemon_;
    std::optional<int> exit_status_;
    std::size_t hypervisor_seen_{0};
    std::size_t service_manager_seen_{0};
    Timeline events_;
};

}  // namespace bench::vehicle

#endif
