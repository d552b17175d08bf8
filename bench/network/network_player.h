#ifndef BENCH_NETWORK_NETWORK_PLAYER_H
#define BENCH_NETWORK_NETWORK_PLAYER_H

#include "bench/json_lines/control_loop.h"
#include "bench/network/capture_file.h"
#include "bench/network/nm_node.h"
#include "bench/network/nm_socket.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench::network {

/// Who a node is and whom it talks to.
struct Network_options {
    std::uint8_t id{0};
    Endpoint own;
    std::vector<Endpoint> others;  ///< each message goes to each of them
    std::size_t request_bytes{6};
    Nm_timing timing;
};

/// A node on a real socket and a real clock: lends the loop its timer, tells of what happens as events, and keeps a
/// capture when asked to. Everything on the loop's thread.
class Network_player : private Nm_environment {
 public:
    /// The loop must outlive this. Throws `std::system_error` when the address can't be had.
    Network_player(Network_options options, Control_loop& loop);

    /// Does something to the node and then what has become due by it. `action` gets the node and the time.
    void act(std::function<void(Nm_node&, Time)> const& action);

    Nm_node const& node() const { return node_; }
    Network_options const& options() const { return options_; }

    /// Is called with every network state that the node tells.
    void on_network_state(std::function<void(Bits const&)> listener) { listener_ = std::move(listener); }

    /// A datagram of any content to every other node.
    void send_raw(Bits const& bytes);

    /// Throws `std::runtime_error` when the file can't be written.
    void start_capture(std::string const& path);
    void stop_capture() { capture_.reset(); }

 private:
    void send(Nm_message const& message) override;
    void state_changed(Nm_state from, Nm_state to) override;
    void network_state(Bits const& requests) override;

    void receive_all();
    void set_timer();
    void tell_news(char const* direction, Nm_message const& message);
    void capture(Endpoint const& from, Endpoint const& to, Bits const& bytes);

    Network_options options_;
    Control_loop& loop_;
    Nm_socket socket_;
    std::unique_ptr<Capture_file> capture_;
    std::map<std::uint8_t, Bits> last_told_;  ///< messages by node; only those that say something new are told
    std::function<void(Bits const&)> listener_;
    Nm_node node_;
    std::optional<Time> timer_;
};

}  // namespace bench::network

#endif
