#ifndef SIMULATION_APPLICATIONS_H
#define SIMULATION_APPLICATIONS_H

#include "simulation/network.h"
#include "simulation/stage.h"

#include <cstdint>
#include <string>

namespace simulation {

/// Applications that call the services of the daemon. A call has ended when its function returns, unless the daemon
/// waits for the network manager just then: it is made after that. One that fails, because nobody offers the instance,
/// is noted as such.
class Applications {
 public:
    Applications(Stage& stage, Network& network) : stage_(stage), network_(network) {}

    void request_ecu(std::string const& instance);
    void release_ecu(std::string const& instance);
    void request_com(std::string const& instance, Bits const& bits, std::uint8_t ac_number);
    void release_com(std::string const& instance, Bits const& bits);
    void request_car_wake_up(std::string const& instance, std::uint8_t ac_number);
    void release_car_wake_up(std::string const& instance);

    /// What diagnostics ask for: 1 restarts the virtual machine, 5 the co-processor.
    void request_restart(std::uint8_t type);

 private:
    template <class Call>
    void make(std::string const& instance, std::string const& what, Call call);

    Stage& stage_;
    Network& network_;
};

}  // namespace simulation

#endif
