#include "bench/vm/virtual_machine.h"

#include "bench/json_lines/clock.h"
#include "bench/vehicle/player_events.h"
#include "bench/vm/running.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <poll.h>

namespace bench::vm {

using vehicle::Kind;

namespace {

constexpr std::chrono::seconds k_emulator_end{5};

nlohmann::json configuration_in(std::string const& image) {
    auto const path = image + "/with-network.json";
    auto configuration = nlohmann::json::parse(std::ifstream(path), nullptr, false);
    if (!configuration.is_object()) {
        throw std::runtime_error(path + " can't be read; the machine has to be made first");
    }
    return configuration;
}

}  // namespace

Virtual_machine::Virtual_machine(Machine_options options)
    : options_(std::move(options)), players_(configuration_in(options_.image), usual_clients()) {}

Virtual_machine::~Virtual_machine() {
    if (running_) {
        running_->emulator.signal(SIGTERM);
        running_->emulator.wait(k_emulator_end);
    }
}

void Virtual_machine::start_daemon() {
    if (is_on()) {
        shell().start("systemctl reset-failed ap_statemanager.service; systemctl start ap_statemanager.service");
        return;
    }
    journal_.clear();
    players_.begin();
    clock_offset_ = std::numeric_limits<std::int64_t>::max();
    running_ = std::make_unique<Running>(options_, [this] { take_news(); });
}

void Virtual_machine::press(std::string const& key) {
    hypervisor().press(key);
    add({monotonic_ns(), Kind::key, key});
}

void Virtual_machine::signal_daemon(int number) {
    shell().start("systemctl kill --signal=" + std::to_string(number) + " ap_statemanager.service");
}

// The machine has three parts to go through, each translated: the shell, the player and the journal.
nlohmann::json Virtual_machine::tell(std::string const& neighbour, nlohmann::json const& command) {
    auto const id = ++commands_;
    shell().start(Players::line_for(neighbour, command, id));
    auto const deadline = std::chrono::steady_clock::now() + k_boot_patience;
    auto answer = players_.take_answer(id);
    while (!answer) {
        if (!is_on() || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error(neighbour + " does not answer");
        }
        update(k_poll);
        answer = players_.take_answer(id);
    }
    if (!answer->value("ok", false)) {
        throw std::runtime_error(neighbour + ": " + answer->value("error", ""));
    }
    players_.note(neighbour, command);
    if (auto event = vehicle::event_of_application(neighbour, command, *answer)) {
        add(std::move(*event));
    }
    return *answer;
}

std::vector<std::string> Virtual_machine::applications() const {
    return options_.with_vehicle ? players_.applications() : std::vector<std::string>();
}

std::vector<vehicle::Client_status> Virtual_machine::clients() const {
    return options_.with_vehicle ? players_.clients() : std::vector<vehicle::Client_status>();
}

nlohmann::json Virtual_machine::configuration() const {
    return configuration_in(options_.image);
}

Qmp& Virtual_machine::hypervisor() {
    if (!running_) {
        throw std::runtime_error("The machine is off");
    }
    return running_->control;
}

Shell& Virtual_machine::shell() {
    if (!running_) {
        throw std::runtime_error("The machine is off");
    }
    return running_->shell;
}

bool Virtual_machine::await_power_off(std::chrono::milliseconds limit) {
    auto const deadline = std::chrono::steady_clock::now() + limit;
    while (is_on() && std::chrono::steady_clock::now() < deadline) {
        update(k_poll);
    }
    return !is_on() && end_ == k_power_off;
}

Entry const* Virtual_machine::await_entry(std::string const& unit, std::string const& words, std::size_t from,
                                          std::chrono::milliseconds limit) {
    auto const deadline = std::chrono::steady_clock::now() + limit;
    for (auto next = from;;) {
        update(k_poll);
        for (; next < journal_.size(); ++next) {
            auto const& entry = journal_[next];
            if ((unit.empty() || entry.unit == unit) && entry.message.find(words) != std::string::npos) {
                return &entry;
            }
        }
        if (std::chrono::steady_clock::now() > deadline) {
            return nullptr;
        }
    }
}

}  // namespace bench::vm
