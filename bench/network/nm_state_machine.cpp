#include "bench/network/nm_state_machine.h"

#include <utility>

namespace bench::network {

char const* name(Nm_state state) {
    switch (state) {
        case Nm_state::bus_sleep:
            return "bus sleep";
        case Nm_state::prepare_bus_sleep:
            return "prepare bus sleep";
        case Nm_state::repeat_message:
            return "repeat message";
        case Nm_state::normal_operation:
            return "normal operation";
        case Nm_state::ready_sleep:
            return "ready sleep";
    }
    return "?";
}

void Nm_state_machine::set_requested(bool requested, Time now) {
    requested_ = requested;
    if (requested && !in_network_mode()) {
        enter(Nm_state::repeat_message, now);
    } else if (requested && state_ == Nm_state::ready_sleep) {
        enter(Nm_state::normal_operation, now);
    } else if (!requested && state_ == Nm_state::normal_operation) {
        enter(Nm_state::ready_sleep, now);
    }
}

void Nm_state_machine::message_received(bool with_repeat_bit, Time now) {
    heard_ = now;
    bool const shows_itself = state_ == Nm_state::repeat_message;
    if (!in_network_mode() || (with_repeat_bit && !shows_itself)) {
        enter(Nm_state::repeat_message, now);
    }
}

void Nm_state_machine::want_repeat(Time now) {
    if (state_ != Nm_state::repeat_message) {
        enter(Nm_state::repeat_message, now);
    }
}

std::optional<Time> Nm_state_machine::next_deadline() const {
    switch (state_) {
        case Nm_state::bus_sleep:
            return std::nullopt;
        case Nm_state::prepare_bus_sleep:
            return entered_ + timing_.wait_bus_sleep;
        case Nm_state::repeat_message:
            return entered_ + timing_.repeat_message;
        case Nm_state::normal_operation:
        case Nm_state::ready_sleep:
            break;
    }
    return heard_ + timing_.timeout;
}

void Nm_state_machine::advance(Time now) {
    auto const deadline = next_deadline();
    if (!deadline || *deadline > now) {
        return;
    }
    if (state_ == Nm_state::prepare_bus_sleep) {
        enter(Nm_state::bus_sleep, *deadline);
    } else if (state_ == Nm_state::repeat_message) {
        enter(requested_ ? Nm_state::normal_operation : Nm_state::ready_sleep, *deadline);
    } else if (state_ == Nm_state::ready_sleep) {
        enter(Nm_state::prepare_bus_sleep, *deadline);
    } else {
        heard_ = *deadline;
    }
}

void Nm_state_machine::enter(Nm_state state, Time now) {
    if (!in_network_mode()) {
        heard_ = now;  // the time-out starts with the network
    }
    entered_ = now;
    on_change_(std::exchange(state_, state), state, now);
}

}  // namespace bench::network
