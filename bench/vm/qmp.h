#ifndef BENCH_VM_QMP_H
#define BENCH_VM_QMP_H

#include "bench/json_lines/line_splitter.h"
#include "bench/vm/port.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench::vm {

/// The emulator's control channel: what a hypervisor does to a machine.
class Qmp {
 public:
    /// Throws `std::runtime_error` when the emulator does not answer.
    explicit Qmp(std::string const& path);

    /// Runs a command and returns its result; throws `std::runtime_error` with the emulator's words when it refuses.
    nlohmann::json execute(std::string const& command, nlohmann::json const& arguments = nlohmann::json::object());

    /// Presses and releases a key. Names as the players of the vehicle have them: "r", "n", "s", "p", "power".
    void press(std::string const& key) { execute("send-key", {{"keys", {{{"type", "qcode"}, {"data", key}}}}}); }

    /// The emulator's events since the last call by their names, with the reason where they have one:
    /// "DEVICE_DELETED", "SHUTDOWN guest-shutdown".
    std::vector<std::string> take_events();

    int descriptor() const { return port_.descriptor(); }

    /// False once the emulator is gone.
    bool is_open() const { return port_.is_open(); }

 private:
    nlohmann::json await_answer();
    void read();

    Port port_;
    Line_splitter lines_;
    std::vector<nlohmann::json> answers_;
    std::vector<std::string> events_;
};

}  // namespace bench::vm

#endif
