#include "bench/network/network_player.h"

#include "base/hex.h"

namespace bench::network {

namespace {

Time now() {
    return std::chrono::steady_clock::now();
}

}  // namespace

Network_player::Network_player(Network_options options, Control_loop& loop)
    : options_(std::move(options)),
      loop_(loop),
      socket_(options_.own),
      node_(options_.id, options_.request_bytes, options_.timing, *this) {
    loop_.watch(socket_.descriptor(), [this] { receive_all(); });
}

void Network_player::act(std::function<void(Nm_node&, Time)> const& action) {
    action(node_, now());
    set_timer();
}

void Network_player::set_timer() {
    auto const deadline = node_.next_deadline();
    if (!deadline || (timer_ && *timer_ <= *deadline)) {
        return;
    }
    timer_ = deadline;
    auto const delay = std::chrono::ceil<std::chrono::milliseconds>(*deadline - now());
    loop_.after(std::max(delay, std::chrono::milliseconds(0)), [this, deadline] {
        if (timer_ == deadline) {
            timer_.reset();
        }
        act([](Nm_node& node, Time time) { node.advance(time); });
    });
}

void Network_player::receive_all() {
    while (auto const datagram = socket_.receive()) {
        capture(datagram->from, options_.own, datagram->bytes);
        auto const message = decode(datagram->bytes, options_.request_bytes);
        if (message) {
            tell_news("received", *message);
            act([&](Nm_node& node, Time time) { node.receive(*message, time); });
        } else {
            loop_.event("malformed",
                        {{"from", address_text(datagram->from.address)}, {"bytes", base::to_hex(datagram->bytes)}});
        }
    }
}

void Network_player::send(Nm_message const& message) {
    tell_news("sent", message);
    send_raw(encode(message));
}

void Network_player::send_raw(Bits const& bytes) {
    for (auto const& other : options_.others) {
        capture(options_.own, other, bytes);
        socket_.send(other, bytes);
    }
}

void Network_player::state_changed(Nm_state from, Nm_state to) {
    loop_.event("nm_state", {{"from", name(from)}, {"to", name(to)}});
}

void Network_player::network_state(Bits const& requests) {
    loop_.event("network_state", {{"bits", base::to_hex(requests)}});
    if (listener_) {
        listener_(requests);
    }
}

void Network_player::tell_news(char const* direction, Nm_message const& message) {
    auto bytes = encode(message);
    auto& last = last_told_[message.node];
    if (bytes == last) {
        return;
    }
    last = std::move(bytes);
    loop_.event("message", {{"direction", direction},
                            {"node", message.node},
                            {"control", message.control},
                            {"requests", base::to_hex(message.requests)},
                            {"user_data", base::to_hex(message.user_data)}});
}

void Network_player::start_capture(std::string const& path) {
    capture_ = std::make_unique<Capture_file>(path);
}

void Network_player::capture(Endpoint const& from, Endpoint const& to, Bits const& bytes) {
    if (capture_) {
        capture_->add(std::chrono::system_clock::now(), from, to, bytes);
    }
}

}  // namespace bench::network
