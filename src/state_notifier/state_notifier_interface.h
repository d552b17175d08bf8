#ifndef STATE_NOTIFIER_STATE_NOTIFIER_INTERFACE_H
#define STATE_NOTIFIER_STATE_NOTIFIER_INTERFACE_H

namespace ximo::ap::statemanager::state_notifier {

/// Tells applications and diagnostics to stand by or to resume, and whether they still do.
class State_notifier_interface {
 public:
    State_notifier_interface() = default;
    virtual ~State_notifier_interface() = default;
    State_notifier_interface(State_notifier_interface const&) = delete;
    State_notifier_interface& operator=(State_notifier_interface const&) = delete;

    /// Starts the standby sequence; returns at once.
    virtual void request_standby() = 0;

    /// Starts the resume sequence; returns at once.
    virtual void request_resume() = 0;

    /// True (1) while a sequence is running. Drives the sequence from step to step, so it is asked in every cycle.
    virtual unsigned int check_request_status() = 0;
};

}  // namespace ximo::ap::statemanager::state_notifier

#endif
