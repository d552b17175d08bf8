#include "service.h"

#include <algorithm>
#include <cstdio>
#include <variant>

namespace power_off {

namespace {

// What is kept of the budget for the power-off itself: a fifth, and at most two seconds. Writing out the file systems
// and ending what still runs takes well under a second on the machines that this was tried on.
constexpr int k_share = 5;
constexpr std::chrono::milliseconds k_longest_reserve{2'000};

std::chrono::milliseconds reserve_of(std::chrono::milliseconds budget) {
    return std::min(budget / k_share, k_longest_reserve);
}

void say(char const* words) {
    std::puts(words);
    std::fflush(stdout);
}

}  // namespace

void Service::handle(std::string const& line) {
    auto const command = parse(line);
    if (!command) {
        say("No command of mine, left out");
        return;
    }
    say(("Command: " + line).c_str());
    std::visit([this](auto const& one) { act(one); }, *command);
}

void Service::act(Lookup const& lookup) {
    process_ = machine_.find(lookup.name);
    say(process_ ? "The process is there" : "There is no such process: nothing to wait for");
}

void Service::act(Terminate const& /*terminate*/) {
    if (process_) {
        process_->terminate();
    }
}

void Service::act(Power_off const& power_off) {
    auto const deadline = Clock::now() + power_off.budget;
    if (process_ && !process_->await_end(deadline - reserve_of(power_off.budget))) {
        say("The process did not end in its time and is killed");
        process_->kill();
    }
    machine_.power_off(deadline);
    say("The power can't be switched off");
}

}  // namespace power_off
