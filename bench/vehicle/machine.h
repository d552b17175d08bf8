#ifndef BENCH_VEHICLE_MACHINE_H
#define BENCH_VEHICLE_MACHINE_H

#include "bench/vehicle/client_status.h"
#include "bench/vehicle/timeline.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench::vehicle {

/// A machine with one daemon on it, as the hypervisor and an operator see it: keys go in, events come out. What it is
/// made of is the business of its kinds: processes in a world of this machine's, or a whole virtual machine. Used by
/// one thread.
class Machine {
 public:
    static constexpr std::chrono::milliseconds k_patience{5'000};

    Machine() = default;
    virtual ~Machine() = default;
    Machine(Machine const&) = delete;
    Machine& operator=(Machine const&) = delete;

    virtual void start_daemon() = 0;
    virtual void press(std::string const& key) = 0;
    virtual void signal_daemon(int number) = 0;

    /// Gives one of the machine's neighbours on the network, one of its applications or one of its clients a command,
    /// as docs/bench.md describes them, and returns the answer: "node", "other node", "application 1", "diag::dcm".
    /// Throws `std::runtime_error` when the machine has no such neighbour or the neighbour refuses.
    virtual nlohmann::json tell(std::string const& neighbour, nlohmann::json const& command);

    /// The daemon's next start reads a configuration that differs from the machine's own one by a merge patch
    /// (RFC 7386). Throws `std::runtime_error` when this machine can't.
    virtual void change_configuration(nlohmann::json const& changes);

    /// Takes in what has happened, and waits up to `limit` for something to happen.
    virtual void update(std::chrono::milliseconds limit) = 0;

    /// Takes in what happens during that time.
    void watch(std::chrono::milliseconds duration);

    /// The names under which applications of this machine reach the state manager's services.
    virtual std::vector<std::string> applications() const { return {}; }

    /// The clients of the state manager as far as they are players of this machine.
    virtual std::vector<Client_status> clients() const { return {}; }

    /// Everything so far, in the order in which it became known.
    Timeline const& events() const { return events_; }

    /// Gives away the events so far, for users who run long; positions begin at 0 again.
    Timeline take_events() { return std::exchange(events_, {}); }

    /// Position of the first event of a kind, from position `from` on, whose text is (a log message: begins with)
    /// `text`. Waits up to `limit` for it; nothing when it did not come.
    std::optional<std::size_t> await(Kind kind, std::string const& text, std::size_t from = 0,
                                     std::chrono::milliseconds limit = k_patience);

    /// The same of the first event for which `fits` holds.
    std::optional<std::size_t> await(std::function<bool(Event const&)> const& fits, std::size_t from = 0,
                                     std::chrono::milliseconds limit = k_patience);

 protected:
    /// How long `update` is given at a time: the log is polled so often.
    static constexpr std::chrono::milliseconds k_poll{10};

    void add(Event event) { events_.push_back(std::move(event)); }
    void add_all(Timeline events) {
        events_.insert(events_.end(), std::make_move_iterator(events.begin()), std::make_move_iterator(events.end()));
    }

 private:
    Timeline events_;
};

}  // namespace bench::vehicle

#endif
