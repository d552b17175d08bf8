#ifndef BENCH_VM_VIRTUAL_MACHINE_H
#define BENCH_VM_VIRTUAL_MACHINE_H

#include "bench/vehicle/machine.h"
#include "bench/vm/account.h"
#include "bench/vm/emulator.h"
#include "bench/vm/players.h"
#include "bench/vm/qmp.h"
#include "bench/vm/shell.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace bench::vm {

/// The whole target machine under an emulator: the kernel, the service manager as its first process, the log daemon,
/// the bus, and the daemon from its package. Keys go to its keyboard; its words, its log and its journal come back on
/// lines of their own. All times are this machine's clock.
///
///     Virtual_machine machine({image});
///     machine.start_daemon();  // switches it on
///     machine.press("p");
///     machine.await(Kind::state_word, "prepared4sd", 0, Virtual_machine::k_boot_patience);
class Virtual_machine : public vehicle::Machine {
 public:
    /// Takes part in suspends on a machine with its vehicle.
    static std::vector<std::string> usual_clients() { return {"diag::dcm", "navigation", "radio", "diag::dem"}; }

    /// Without hardware help a boot takes seconds, and many more where other work is done at the same time.
    static constexpr std::chrono::seconds k_boot_patience{90};

    /// What the event of its end says when it switched itself off.
    static constexpr char const* k_power_off = "power off";

    explicit Virtual_machine(Machine_options options);
    ~Virtual_machine() override;

    /// Switches the machine on when it is off; else starts the daemon on it.
    void start_daemon() override;
    void press(std::string const& key) override;
    void signal_daemon(int number) override;
    nlohmann::json tell(std::string const& neighbour, nlohmann::json const& command) override;
    std::vector<std::string> applications() const override;
    std::vector<vehicle::Client_status> clients() const override;
    void update(std::chrono::milliseconds limit) override;

    /// As if the power went: the emulator is killed, and what the machine had not given to its disk is lost. `ended`
    /// follows.
    void cut_power();

    bool is_on() const { return running_ != nullptr; }

    /// The configuration of the daemon on a machine with its vehicle.
    nlohmann::json configuration() const;

    /// True when the machine switched itself off within the time.
    bool await_power_off(std::chrono::milliseconds limit);

    /// The hypervisor's hand: devices come and go. Only while it is on.
    Qmp& hypervisor();
    Shell& shell();

    /// The journal since the machine was switched on, with the machine's own times.
    std::vector<Entry> const& journal() const { return account_.journal(); }

    /// The last lines that the kernel has written since the machine was switched on; empty while it is off.
    std::string console() const;

    /// Waits for an entry of the unit (any, when empty) whose message contains the words, from entry `from` on.
    Entry const* await_entry(std::string const& unit, std::string const& words, std::size_t from = 0,
                             std::chrono::milliseconds limit = k_boot_patience);

    /// The machine's clock at a time of this machine's, both in nanoseconds.
    std::int64_t machine_time(std::int64_t time) const { return account_.machine_time(time); }

 private:
    struct Running;

    void hear_news();
    void note_end();

    Machine_options options_;
    Players players_;
    unsigned commands_{0};
    std::unique_ptr<Running> running_;
    std::string end_;  ///< how it ended, once it has; empty while it is on
    Account account_;
};

}  // namespace bench::vm

#endif
