#ifndef SIMULATION_SERVICE_MANAGER_H
#define SIMULATION_SERVICE_MANAGER_H

#include "simulation/stage.h"

#include <string>

namespace simulation {

/// What the service manager answers to a request for a machine state. The driver waits for the answer, so a late one
/// holds up its cycle, while time and everybody else go on.
class Service_manager {
 public:
    enum class Manner { grants, refuses, silent };

    explicit Service_manager(Stage& stage) : stage_(stage) {}

    void behave(Manner manner, Time after) {
        manner_ = manner;
        after_ = after;
    }

    /// Passes the time that the answer takes, at most the second after which the caller gives up, and tells the manner
    /// of the answer.
    Manner answer(std::string const& machine_state);

 private:
    Stage& stage_;
    Manner manner_{Manner::grants};
    Time after_{0};
};

}  // namespace simulation

#endif
