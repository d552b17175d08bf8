#ifndef POWER_OFF_SERVICE_H
#define POWER_OFF_SERVICE_H

#include "command.h"
#include "machine.h"

#include <chrono>
#include <memory>
#include <string>

namespace power_off {

/// Acts on the state manager's commands. While the machine prepares for a suspend it is told which process holds data
/// ("lookup"); when the power is to go while the machine is suspended, that process is asked to end ("terminate"), is
/// given what the budget leaves, and then the power goes ("poweroff"). What it does it says on standard output.
class Service {
 public:
    explicit Service(Machine& machine) : machine_(machine) {}

    void handle(std::string const& line);

 private:
    void act(Lookup const& lookup);
    void act(Terminate const& terminate);
    void act(Power_off const& power_off);

    Machine& machine_;
    std::unique_ptr<Process> process_;
};

}  // namespace power_off

#endif
