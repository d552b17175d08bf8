#include "statemanager/service_handler/ecu_state.h"

#include "ara/log/logging.h"
#include "status/network_status.h"

namespace ximo::ap::statemanager {

void Ecu_state::update(bool network_active) {
    auto const next = [network_active](Value value) { return network_active ? Value::active : after_rest(value); };
    auto before = value_.load();
    while (!value_.compare_exchange_weak(before, next(before))) {
    }

    status::ecu_state(static_cast<std::uint64_t>(next(before)));
    switch (next(before)) {
        case Value::active:
            ara::log::LogInfo() << "Ecu state based on NM activity: active";
            break;
        case Value::ready_sleep:
            ara::log::LogInfo() << "Ecu state based on NM activity: ready sleep";
            break;
        case Value::sleep_mode:
            ara::log::LogInfo() << "Ecu state based on NM activity: inactive (sleep mode)";
            break;
    }
}

Ecu_state::Value Ecu_state::after_rest(Value value) {
    return value == Value::active ? Value::ready_sleep : Value::sleep_mode;
}

}  // namespace ximo::ap::statemanager
