#ifndef STATEMANAGER_STATES_KNOCKOUT_HANDLER_H
#define STATEMANAGER_STATES_KNOCKOUT_HANDLER_H

#include <cstdint>

namespace ximo::ap::statemanager::states {

/// Bounds how long applications may keep the ECU alive in post run. Counts cycles of the driver, not time: one
/// `update_knockout_timer()` for each cycle in which the state stays.
class Knockout_handler {
 public:
    explicit Knockout_handler(std::uint32_t initial) : current_(initial), initial_(initial) {}

    void reset_knockout_timer() { current_ = initial_; }

    /// Takes one cycle off; an expired timer stays at 0.
    void update_knockout_timer() {
        if (current_ != 0) {
            --current_;
        }
    }

    std::uint32_t get_knockout_timer_value() const { return current_; }
    bool is_knockout_timer_expired() const { return current_ == 0; }

 private:
    std::uint32_t current_;
    std::uint32_t initial_;
};

}  // namespace ximo::ap::statemanager::states

#endif
