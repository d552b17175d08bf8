// Each step is done on the thread that plays; what it leaves behind is put right by a mend when its time is over. A
// stopped process is continued by a thread of its own, since the player may wait for an answer just then.

#include "road.h"

#include "bench/json_lines/clock.h"
#include "words.h"

#include <algorithm>
#include <csignal>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace soak {

namespace {

using bench::monotonic_ns;
using nlohmann::json;
using std::chrono::milliseconds;

constexpr unsigned k_busy_processes = 3;
constexpr milliseconds k_owed{700};      // less than half of the watchdog's two seconds
constexpr std::int64_t k_late_ms = 100;  // a process that is to go on waits for a processor first

/// Of what the step is about: the words between its first one and "for" or "after".
std::string name_in(Step const& step) {
    std::string name;
    for (auto word = step.words.begin() + 1; word != step.words.end() && *word != "for" && *word != "after"; ++word) {
        name += (name.empty() ? "" : " ") + *word;
    }
    return name;
}

}  // namespace

Road::~Road() {
    mend(Clock::time_point::max());
}

void Road::act(Step const& step) {
    switch (step.verb) {
        case Verb::stop:
            stop(step);
            break;
        case Verb::freeze:
            freeze(step);
            break;
        case Verb::busy:
            make_busy(step);
            break;
        case Verb::kill:
            kill(step);
            break;
        case Verb::late_start:
            make_late(step);
            break;
        case Verb::withdraw:
            withdraw(step);
            break;
        case Verb::need:
            tell("other node", {{"do", "request"}, {"bits", step.words.back()}});
            break;
        case Verb::rest:
            tell("other node", {{"do", "release"}, {"bits", "ffffffffffff"}});
            break;
        default:
            if (tell("other node", {{"do", "silence"}})) {
                for_a_while(step, [this] { tell("other node", {{"do", "speak"}}); });
            }
    }
}

void Road::stop(Step const& step) {
    auto const name = name_in(step);
    if (lasts(Verb::kill, name) || lasts(Verb::stop, name) || (name == "daemon" && machine_.has_ended_unawaited()) ||
        !runs(name)) {
        return;
    }
    auto const process = machine_.process(name).pid();
    auto const time = milliseconds(number_at_end(step));
    // Reports that find no room for half of the watchdog's time have failed, and end for good.
    circumstances_.is_supervised = circumstances_.is_supervised && (name != "service manager" || time < k_owed);
    ::kill(process, SIGSTOP);
    stall(time);
    auto continued = std::make_shared<std::future<void>>(std::async(std::launch::async, [process, time] {
        std::this_thread::sleep_for(time);
        ::kill(process, SIGCONT);
    }));
    for_a_while(step, [continued] { continued->wait(); });
}

// All but the hypervisor stand still, so the player waits as well.
void Road::freeze(Step const& step) {
    auto const time = milliseconds(number_at_end(step));
    if (!freezer_) {
        try {
            freezer_.emplace();
        } catch (std::runtime_error const& error) {
            cannot_freeze_ = error.what();
            return;
        }
    }
    stall(time);
    freezer_->enclose_all_but(machine_.hypervisor().process().pid());
    freezer_->freeze();
    std::this_thread::sleep_for(time);
    freezer_->thaw();
}

void Road::make_busy(Step const& step) {
    stall(milliseconds(number_at_end(step)));
    auto loops = std::make_shared<std::vector<std::unique_ptr<bench::Child_process>>>();
    for (unsigned count = 0; count < k_busy_processes; ++count) {
        loops->push_back(std::make_unique<bench::Child_process>(
            std::vector<std::string>{"sh", "-c", "while :; do :; done"}, std::vector<std::string>()));
    }
    for_a_while(step, [loops] {
        for (auto& loop : *loops) {
            loop->signal(SIGKILL);
        }
    });
}

void Road::kill(Step const& step) {
    auto const name = name_in(step);
    if (lasts(Verb::kill, name) || (name == "node" && lasts(Verb::withdraw))) {
        return;
    }
    machine_.kill(name);
    stall(milliseconds(number_at_end(step)));
    bool const is_manager = name == "node";
    if (is_manager) {
        losses_.note();
    }
    circumstances_.log_has_hole = circumstances_.log_has_hole || name == "log daemon";
    circumstances_.is_supervised = circumstances_.is_supervised && name != "bus";
    for_a_while(step, [this, name, is_manager] {
        machine_.revive(name);
        if (is_manager) {
            losses_.lose();
        }
    });
}

// The service manager can't come alone: it is there, and stands still.
void Road::make_late(Step const& step) {
    bool const is_there = name_in(step) == "service manager";
    Step comes_late = step;
    comes_late.verb = is_there ? Verb::stop : Verb::kill;
    circumstances_.happened.insert(comes_late.verb);
    act(comes_late);
}

void Road::withdraw(Step const& step) {
    if (!lasts(Verb::kill, "node") && !lasts(Verb::withdraw) && tell("node", {{"do", "withdraw"}})) {
        losses_.lose();
        for_a_while(step, [this] {
            tell("node", {{"do", "offer"}});
            losses_.lose();
        });
    }
}

void Road::stall(milliseconds time) {
    auto const now = monotonic_ns();
    circumstances_.stalls.push_back({now, now + (time.count() + k_late_ms) * k_ns_per_ms});
}

bool Road::runs(std::string const& name) {
    try {
        return !machine_.process(name).status();
    } catch (std::runtime_error const&) {
        return false;
    }
}

void Road::for_a_while(Step const& step, std::function<void()> action) {
    mends_.push_back({Clock::now() + milliseconds(number_at_end(step)), step.verb, name_in(step), std::move(action)});
}

bool Road::lasts(Verb verb, std::string const& name) const {
    return std::any_of(mends_.begin(), mends_.end(),
                       [&](Mend const& mend) { return mend.verb == verb && (name.empty() || mend.name == name); });
}

void Road::mend(Clock::time_point now) {
    for (auto mend = mends_.begin(); mend != mends_.end();) {
        if (mend->at > now) {
            ++mend;
            continue;
        }
        auto const action = std::move(mend->action);
        mend = mends_.erase(mend);
        action();
        mend = mends_.begin();
    }
}

// One that is killed is told nothing.
bool Road::tell(std::string const& neighbour, json const& command) {
    if (lasts(Verb::kill, neighbour)) {
        return false;
    }
    try {
        machine_.tell(neighbour, command);
    } catch (std::runtime_error const&) {
        machine_.update({});
        machine_.tell(neighbour, command);  // a client that has just crashed is started again now
    }
    return true;
}

}  // namespace soak
