#ifndef STATEMANAGER_SUPERVISION_MANAGER_INTERFACE_H
#define STATEMANAGER_SUPERVISION_MANAGER_INTERFACE_H

namespace ximo::ap::statemanager::phm {

/// Tells health management that the driver is alive.
class Supervision_manager_interface {
 public:
    Supervision_manager_interface() = default;
    virtual ~Supervision_manager_interface() = default;
    Supervision_manager_interface(Supervision_manager_interface const&) = delete;
    Supervision_manager_interface& operator=(Supervision_manager_interface const&) = delete;

    /// Called once at the start of every cycle.
    virtual void report_alive_status() = 0;
};

}  // namespace ximo::ap::statemanager::phm

#endif
