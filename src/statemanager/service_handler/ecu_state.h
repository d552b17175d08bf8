#ifndef STATEMANAGER_SERVICE_HANDLER_ECU_STATE_H
#define STATEMANAGER_SERVICE_HANDLER_ECU_STATE_H

#include <atomic>
#include <cstdint>

namespace ximo::ap::statemanager {

/// What the activity of the network means for this ECU. Network management reports rest twice on its way to bus sleep:
/// the first report makes an active ECU ready to sleep, the second one lets it sleep.
///
///     active --rest--> ready sleep --rest--> inactive (sleep mode)      activity leads back to active from everywhere
///
/// Any thread may report and ask.
class Ecu_state {
 public:
    /// A report of the network: in use, or at rest. The new state is logged.
    void update(bool network_active);

    bool in_sleep_mode() const { return value_ == Value::sleep_mode; }

 private:
    enum class Value : std::uint8_t { active = 0, ready_sleep = 1, sleep_mode = 2 };

    static Value after_rest(Value value);

    std::atomic<Value> value_{Value::active};
};

}  // namespace ximo::ap::statemanager

#endif
