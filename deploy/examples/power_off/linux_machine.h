#ifndef POWER_OFF_LINUX_MACHINE_H
#define POWER_OFF_LINUX_MACHINE_H

#include "machine.h"

namespace power_off {

/// Linux with systemd as its first process.
class Linux_machine : public Machine {
 public:
    std::unique_ptr<Process> find(std::string const& name) override;
    void power_off(Clock::time_point deadline) override;
};

}  // namespace power_off

#endif
