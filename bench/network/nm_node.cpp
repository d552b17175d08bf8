#include "bench/network/nm_node.h"

#include <algorithm>

namespace bench::network {

namespace {

std::optional<Time> earliest(std::optional<Time> left, std::optional<Time> right) {
    if (!left || !right) {
        return left ? left : right;
    }
    return std::min(*left, *right);
}

}  // namespace

Nm_node::Nm_node(std::uint8_t id, std::size_t request_bytes, Nm_timing const& timing, Nm_environment& environment)
    : id_(id),
      timing_(timing),
      environment_(environment),
      machine_(timing, [this](Nm_state from, Nm_state to, Time when) { on_change(from, to, when); }),
      requests_(request_bytes),
      announced_(request_bytes) {}

void Nm_node::request(Bits const& bits, Time now) {
    auto requests = requests_;
    set_bits(requests, bits);
    set_requests(requests, now);
}

void Nm_node::release(Bits const& bits, Time now) {
    auto requests = requests_;
    clear_bits(requests, bits);
    set_requests(requests, now);
}

void Nm_node::set_requests(Bits const& requests, Time now) {
    advance(now);
    requests_ = requests;
    woke_the_bus_ = woke_the_bus_ || (any(requests_) && !machine_.in_network_mode());
    announce();
    machine_.set_requested(any(requests_), now);
    advance(now);
}

void Nm_node::receive(Nm_message const& message, Time now) {
    if (message.node == id_) {
        return;
    }
    advance(now);
    machine_.message_received(message.has(Control_bit::repeat_message), now);
    auto& peer = peers_[message.node];
    peer.requests.assign(requests_.size(), 0);
    set_bits(peer.requests, message.requests);
    peer.user_data = message.user_data;
    peer.control = message.control;
    peer.heard = now;
    announce();
    advance(now);
}

void Nm_node::want_repeat(Time now) {
    advance(now);
    wants_repeat_ = wants_repeat_ || machine_.state() != Nm_state::repeat_message;
    machine_.want_repeat(now);
    advance(now);
}

Bits Nm_node::network_state() const {
    auto state = requests_;
    for (auto const& [id, peer] : peers_) {
        set_bits(state, peer.requests);
    }
    return state;
}

std::optional<Time> Nm_node::next_reset() const {
    std::optional<Time> next;
    for (auto const& [id, peer] : peers_) {
        if (any(peer.requests)) {
            next = earliest(next, peer.heard + timing_.reset);
        }
    }
    return next;
}

std::optional<Time> Nm_node::next_deadline() const {
    return earliest(next_reset(), earliest(next_send_, machine_.next_deadline()));
}

// Deadlines that have passed meanwhile are acted on in their order, each as of its own time, except that what was
// not sent in time is sent once, now.
void Nm_node::advance(Time now) {
    for (auto deadline = next_deadline(); deadline && *deadline <= now; deadline = next_deadline()) {
        if (next_reset() == deadline) {
            forget_unrepeated(*deadline);
        } else if (next_send_ == deadline) {
            send(now);
        } else {
            machine_.advance(*deadline);
        }
    }
}

void Nm_node::forget_unrepeated(Time now) {
    for (auto& [id, peer] : peers_) {
        if (peer.heard + timing_.reset <= now) {
            peer.requests.assign(requests_.size(), 0);
        }
    }
    announce();
}

void Nm_node::send(Time now) {
    next_send_ = now + timing_.cycle;
    if (!silent_) {
        machine_.message_sent(now);
        environment_.send({id_, control(), requests_, user_data_});
    }
}

std::uint8_t Nm_node::control() const {
    auto bits = static_cast<unsigned>(Control_bit::partial_network);
    bits |= wants_repeat_ ? Control_bit::repeat_message : 0U;
    bits |= woke_the_bus_ ? Control_bit::active_wakeup : 0U;
    return static_cast<std::uint8_t>(bits);
}

void Nm_node::on_change(Nm_state from, Nm_state to, Time when) {
    if (machine_.sends() && !next_send_) {
        next_send_ = when;
    } else if (!machine_.sends()) {
        next_send_.reset();
    }
    wants_repeat_ = wants_repeat_ && to == Nm_state::repeat_message;
    environment_.state_changed(from, to);
    if (to == Nm_state::prepare_bus_sleep) {
        woke_the_bus_ = false;
        for (auto& [id, peer] : peers_) {
            peer.requests.assign(requests_.size(), 0);
        }
        announce();
    } else if (to == Nm_state::bus_sleep) {
        announced_ = network_state();
        environment_.network_state(announced_);
    }
}

void Nm_node::announce() {
    auto state = network_state();
    if (state != announced_) {
        announced_ = std::move(state);
        environment_.network_state(announced_);
    }
}

}  // namespace bench::network
