#ifndef TESTS_SYSTEM_VM_TARGET_H
#define TESTS_SYSTEM_VM_TARGET_H

#include "bench/vm/virtual_machine.h"

#include <chrono>
#include <memory>
#include <string>

#include <gmock/gmock.h>

namespace bench::vm {

using vehicle::Kind;

/// Stories on one virtual machine that all of them share: booting it takes longer than most of them. Each finds it
/// switched on and in "running", whatever the one before left; what is awaited is looked for from its begin, or from
/// the last `mark`, on.
class Target : public testing::Test {
 protected:
    static constexpr std::chrono::seconds k_patience = Virtual_machine::k_boot_patience;

    static Virtual_machine& machine();

    /// A machine that was off, and boots when the story starts it.
    static void switch_off();

    void SetUp() override;

    /// After a failure, tells what the machine told.
    void TearDown() override;

    void mark() { begin_ = machine().events().size(); }
    bool sees(Kind kind, std::string const& text) {
        return machine().await(kind, text, begin_, k_patience).has_value();
    }
    bool shows(std::string const& word) { return sees(Kind::state_word, word); }
    bool logs(std::string const& text) { return sees(Kind::log, text); }

    /// What a command in the machine prints, without the newline at its end.
    static std::string output_of(std::string const& command);

    /// Whether a command in the machine comes to succeed.
    static bool comes_true(std::string const& command);

    /// A property of the daemon's unit.
    static std::string property(std::string const& name) {
        return output_of("systemctl show --value -p " + name + " ap_statemanager.service");
    }

    void start_the_daemon_again();

    /// The next story begins with a new daemon.
    static void needs_new_daemon() { daemon_is_used_up = true; }

 private:
    static std::unique_ptr<Virtual_machine> shared_machine;
    static bool daemon_is_used_up;
    friend class Shared_machine;

    std::size_t begin_{0};
};

}  // namespace bench::vm

#endif
