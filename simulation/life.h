#ifndef SIMULATION_LIFE_H
#define SIMULATION_LIFE_H

#include "simulation/applications.h"
#include "simulation/clients.h"
#include "simulation/control_files.h"
#include "simulation/event_queue.h"
#include "simulation/hypervisor.h"
#include "simulation/network.h"
#include "simulation/service_manager.h"
#include "simulation/timeline.h"

#include <functional>
#include <memory>
#include <string>

namespace simulation {

/// What a life is begun with.
struct Life_options {
    std::string configuration;        ///< the JSON text of a configuration file
    bool with_log{false};             ///< entries for what the daemon logs as well
    bool manager_is_there{true};      ///< the network manager offers its services from the start
    bool channel_is_there{true};      ///< the power-off service listens
    Time power_off_takes{0};          ///< from its line "poweroff" to the end
    Observer observer{};              ///< is told of each entry, and may be empty
    std::function<void()> on_wait{};  ///< is called whenever the driver begins to wait for a key; may be empty
};

/// One life of the daemon, from its start to its end: the real driver, states, command queue, notifier, service handler
/// with the provided services, client of network management, configuration and parser, and around them neighbours that
/// are models, in virtual time, on the caller's thread. The same calls give the same timeline.
///
///     Life life({configuration});
///     life.clients().connect("radio", {Client_manner::Answer::succeeds, std::chrono::seconds(3)});
///     life.events().at(std::chrono::seconds(2), [&] { life.hypervisor().press("p"); });
///     life.run(std::chrono::seconds(20));
///     for (auto const& entry : life.timeline()) ...
///
/// One life at a time in a process, as with the daemon itself.
class Life {
 public:
    /// Throws `std::runtime_error` with a reason for a configuration that the daemon refuses.
    explicit Life(Life_options options);
    ~Life();
    Life(Life const&) = delete;
    Life& operator=(Life const&) = delete;

    /// Starts the daemon and runs it until it ends, the power goes off, or the time has come.
    void run(Time until);

    /// What a service manager sends to stop the daemon.
    void terminate();

    Event_queue& events();
    Hypervisor& hypervisor();
    Clients& clients();
    Network& network();
    Applications& applications();
    Service_manager& service_manager();

    /// The hypervisor's file for state words and for restart requests, or the power-off channel.
    void status_file(Control_files::Manner manner, Time after = Time(0));
    void restart_file(Control_files::Manner manner, Time after = Time(0));

    /// Notes that a neighbour came, went or changed.
    void note(std::string const& who, std::string const& what);

    Timeline const& timeline() const;
    std::string const& state() const;  ///< "Running"
    bool intends_to_suspend() const;   ///< the intention that the states keep while the network decides
    std::uint64_t cycles() const;
    Time longest_cycle() const;  ///< between two reports that the daemon is alive

 private:
    class Daemon;
    std::unique_ptr<Daemon> daemon_;
};

}  // namespace simulation

#endif
