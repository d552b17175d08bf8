#include "target.h"

#include "bench/process/child_process.h"

#include <algorithm>
#include <cstdio>

namespace bench::vm {

std::unique_ptr<Virtual_machine> Target::shared_machine;
std::ofstream Target::trace;
bool Target::daemon_is_used_up = false;

/// Ends the machine before the program does.
class Shared_machine : public testing::Environment {
 public:
    void TearDown() override { Target::end_machine(); }
};

namespace {

auto* const g_shared_machine = testing::AddGlobalTestEnvironment(new Shared_machine);

double seconds(std::int64_t nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e9;
}

}  // namespace

Virtual_machine& Target::machine() {
    if (!shared_machine) {
        switch_off();
    }
    return *shared_machine;
}

Machine_options Target::usual_machine() {
    Machine_options options;
    options.image = VM_IMAGE;
    options.counts_instructions = true;
    return options;
}

void Target::switch_off(Machine_options next) {
    end_machine();
    trace.open(VM_TRACE, std::ios::binary);
    next.trace = &trace;
    shared_machine = std::make_unique<Virtual_machine>(next);
}

void Target::end_machine() {
    if (!shared_machine) {
        return;
    }
    shared_machine.reset();
    trace.close();
    constexpr int k_no_life = 2;
    Child_process checker({"/bin/sh", "-c", "exec " AP_WHATIF " --trace " VM_TRACE " >&2"}, {});
    EXPECT_THAT(checker.wait(k_patience), testing::AnyOf(0, k_no_life));
}

void Target::begin_story() {
    mark();
    story_begin_ = begin_;
}

void Target::SetUp() {
    begin_story();
    if (!machine().is_on()) {
        machine().start_daemon();
    } else if (last_word() == "running" && !daemon_is_used_up) {
        return;
    } else {
        start_the_daemon_again();
    }
    daemon_is_used_up = false;
    ASSERT_TRUE(shows("running"));
    mark();
}

void Target::TearDown() {
    if (!may_calls_fail_) {
        EXPECT_THAT(failed_calls(), testing::IsEmpty());
    }
    EXPECT_THAT(bad_ends(), testing::ElementsAreArray(ends_seen_));
    if (!HasFailure()) {
        return;
    }
    tell_events();
    tell_state();
}

bool Target::ends_by(std::string const& how) {
    ends_seen_.push_back(how);
    return sees(Kind::ended, how);
}

void Target::tell_events() const {
    auto const& events = machine().events();
    for (auto event = events.begin() + static_cast<std::ptrdiff_t>(std::min(begin_, events.size()));
         event != events.end(); ++event) {
        std::printf("%10.3f s  %s  %s\n", seconds(machine().machine_time(event->time)), name(event->kind),
                    event->text.c_str());
    }
    auto const& journal = machine().journal();
    auto const shown = std::min<std::size_t>(journal.size(), 60);
    for (auto entry = journal.end() - static_cast<std::ptrdiff_t>(shown); entry != journal.end(); ++entry) {
        std::printf("%10.3f s  %s: %s\n", seconds(entry->time), entry->unit.c_str(), entry->message.c_str());
    }
}

// What is waited for, what has failed, and what the kernel says: a boot that takes too long is explained by it.
void Target::tell_state() {
    try {
        auto const told = machine().shell().run(
            "systemctl list-jobs --no-pager; systemctl --failed --no-pager --no-legend; systemctl status --no-pager -n "
            "3 "
            "'dev-hypervisor\\x2dkeyboard.device' ap_statemanager.service dlt-daemon.service dbus.service; uptime",
            std::chrono::seconds(20));
        std::printf("--- the machine's units:\n%s", told.output.c_str());
    } catch (std::exception const& error) {
        std::printf("--- the machine's units are not told: %s\n", error.what());
    }
    std::printf("--- the machine's console:\n%s\n", machine().console().c_str());
}

std::string Target::last_word() {
    auto const& events = machine().events();
    auto const last =
        std::find_if(events.rbegin(), events.rend(), [](auto const& event) { return event.kind == Kind::state_word; });
    return last == events.rend() ? "" : last->text;
}

void Target::start_the_daemon_again() {
    mark();
    machine().shell().run("systemctl reset-failed ap_statemanager.service; systemctl restart ap_statemanager.service");
}

std::string Target::output_of(std::string const& command) {
    auto output = machine().shell().run(command).output;
    output.erase(output.find_last_not_of('\n') + 1);
    return output;
}

std::vector<std::string> Target::failed_calls() const {
    auto const& events = machine().events();
    std::vector<std::string> failures;
    std::for_each(events.begin() + static_cast<std::ptrdiff_t>(story_begin_), events.end(), [&](auto const& event) {
        if (event.kind == Kind::log && event.text.find("exception") != std::string::npos) {
            failures.push_back(event.text);
        }
    });
    return failures;
}

std::vector<std::string> Target::bad_ends() const {
    auto const& events = machine().events();
    std::vector<std::string> ends;
    std::for_each(events.begin() + static_cast<std::ptrdiff_t>(story_begin_), events.end(), [&](auto const& event) {
        if (event.kind == Kind::ended && event.text != "0" && event.text != Virtual_machine::k_power_off) {
            ends.push_back(event.text);
        }
    });
    return ends;
}

std::vector<std::string> Target::calls_at_manager() {
    std::vector<std::string> calls;
    for (auto const& entry : machine().journal()) {
        auto const message = entry.unit == "vehicle-network-manager.service"
                                 ? nlohmann::json::parse(entry.message, nullptr, false)
                                 : nlohmann::json();
        if (message.is_object() && message.value("event", "") == "call") {
            calls.push_back(message.value("method", "") + " " + message.value("bytes", ""));
        }
    }
    return calls;
}

bool Target::manager_holds(std::string const& bits, std::string const& user_data) {
    auto const deadline = std::chrono::steady_clock::now() + k_patience;
    for (;;) {
        auto const manager = machine().tell("node", {{"do", "list"}});
        if (manager["requests"] == bits && manager["user_data"] == user_data) {
            return true;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            ADD_FAILURE() << "The network manager holds " << manager;
            return false;
        }
        machine().watch(std::chrono::milliseconds(100));
    }
}

bool Target::comes_true(std::string const& command) {
    auto const deadline = std::chrono::steady_clock::now() + k_patience;
    while (machine().shell().run(command).status != 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        machine().watch(std::chrono::milliseconds(100));
    }
    return true;
}

}  // namespace bench::vm
