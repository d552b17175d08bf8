#ifndef TESTS_SYSTEM_VM_TARGET_H
#define TESTS_SYSTEM_VM_TARGET_H

#include "bench/vm/virtual_machine.h"

#include <chrono>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace bench::vm {

using vehicle::Kind;

/// Stories on one virtual machine that all of them share: booting it takes longer than most of them. Each finds it
/// switched on and in "running", whatever the one before left; what is awaited is looked for from its begin, or from
/// the last `mark`, on.
class Target : public testing::Test {
 protected:
    static constexpr std::chrono::seconds k_patience = Virtual_machine::k_boot_patience;

    // At the network manager, as the machine's configuration has it.
    static constexpr char const* k_default_pattern = "00 00 01 00 00 00";
    static constexpr char const* k_no_bits = "00 00 00 00 00 00";
    static constexpr char const* k_user_data = "80 00 00 00 00 00";  ///< while no application asks for anything
    static constexpr char const* k_no_user_data = "00 00 00 00 00 00";

    static Virtual_machine& machine();

    /// A machine that was off, and boots when the story starts it: another one when it says so.
    static void switch_off(Machine_options next = usual_machine());

    /// Only the daemon, without its vehicle.
    static Machine_options usual_machine();

    void SetUp() override;

    /// No call of the daemon has failed, unless the story says that they may, and the daemon has ended in no other way
    /// than in order, with the machine's power, or as the story has seen. After a failure, tells what the machine told,
    /// and in what state it is.
    void TearDown() override;

    /// For stories that take a neighbour away while the daemon needs it.
    void calls_may_fail() { may_calls_fail_ = true; }

    /// What was before does not count.
    void begin_story();
    void mark() { begin_ = machine().events().size(); }
    bool sees(Kind kind, std::string const& text) {
        return machine().await(kind, text, begin_, k_patience).has_value();
    }
    bool shows(std::string const& word) { return sees(Kind::state_word, word); }
    bool logs(std::string const& text) { return sees(Kind::log, text); }

    /// For stories that have the daemon ended: whether it comes to end so, as the service manager tells it.
    bool ends_by(std::string const& how);

    /// The last that the machine has written.
    static std::string last_word();

    /// What a command in the machine prints, without the newline at its end.
    static std::string output_of(std::string const& command);

    /// Whether a command in the machine comes to succeed.
    static bool comes_true(std::string const& command);

    /// What the daemon logged of calls that failed, since the story's begin.
    std::vector<std::string> failed_calls() const;

    /// How the daemon has ended other than in order or with the machine's power, since the story's begin.
    std::vector<std::string> bad_ends() const;

    /// What the network manager was called for, since the machine was switched on: "ReleaseNetwork ff ff ff 01".
    static std::vector<std::string> calls_at_manager();

    /// Whether the network manager comes to hold these bits of the daemon, and this user data.
    static bool manager_holds(std::string const& bits, std::string const& user_data);

    /// A property of the daemon's unit.
    static std::string property(std::string const& name) {
        return output_of("systemctl show --value -p " + name + " ap_statemanager.service");
    }

    void start_the_daemon_again();

    /// The next story begins with a new daemon.
    static void needs_new_daemon() { daemon_is_used_up = true; }

 private:
    /// Ends the machine. The daemon's lives in it were those that the simulated machine has, given what came from
    /// outside, as far as its log can decide it.
    static void end_machine();

    void tell_events() const;
    static void tell_state();

    static std::unique_ptr<Virtual_machine> shared_machine;
    static std::ofstream trace;
    static bool daemon_is_used_up;
    friend class Shared_machine;

    std::size_t begin_{0};
    std::size_t story_begin_{0};
    bool may_calls_fail_{false};
    std::vector<std::string> ends_seen_;
};

}  // namespace bench::vm

#endif
