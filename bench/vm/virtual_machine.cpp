#include "bench/vm/virtual_machine.h"

#include "bench/json_lines/clock.h"
#include "bench/vehicle/player_events.h"
#include "bench/vm/running.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <iterator>
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

/// How the machine ended, by the emulator's events; empty while it is on.
std::string end_in(std::vector<std::string> const& events) {
    auto const end = std::find_if(events.begin(), events.end(),
                                  [](std::string const& event) { return event.rfind("SHUTDOWN", 0) == 0; });
    if (end == events.end()) {
        return "";
    }
    return *end == "SHUTDOWN guest-shutdown" ? Virtual_machine::k_power_off
           : *end == "SHUTDOWN guest-reset"  ? "reset"
                                             : "switched off from outside";
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
    account_ = {};
    players_.begin();
    running_ = std::make_unique<Running>(options_, [this] { hear_news(); });
}

void Virtual_machine::press(std::string const& key) {
    hypervisor().press(key);
    add({monotonic_ns(), Kind::key, key});
}

void Virtual_machine::signal_daemon(int number) {
    shell().start("systemctl kill --signal=" + std::to_string(number) + " ap_statemanager.service");
}

void Virtual_machine::cut_power() {
    if (running_) {
        running_->emulator.signal(SIGKILL);
    }
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

void Virtual_machine::update(std::chrono::milliseconds limit) {
    if (!running_) {
        ::poll(nullptr, 0, static_cast<int>(limit.count()));
        return;
    }
    std::array<pollfd, 6> sources{{{running_->log.descriptor(), POLLIN, 0},
                                   {running_->state.descriptor(), POLLIN, 0},
                                   {running_->restart.descriptor(), POLLIN, 0},
                                   {running_->power_off.descriptor(), POLLIN, 0},
                                   {running_->journal.descriptor(), POLLIN, 0},
                                   {running_->control.descriptor(), POLLIN, 0}}};
    ::poll(sources.data(), sources.size(), static_cast<int>(limit.count()));
    hear_news();
    note_end();
}

void Virtual_machine::hear_news() {
    add_all(account_.hear_state(running_->state.take()));
    add_all(account_.hear_restart(running_->restart.take()));
    add_all(account_.hear_power_off(running_->power_off.take()));
    auto const log = running_->log.take();
    if (options_.trace != nullptr) {
        *options_.trace << log << std::flush;
    }
    add_all(account_.hear_log(log));
    add_all(account_.hear_journal(running_->journal.take(), players_));
}

void Virtual_machine::note_end() {
    end_ = end_in(running_->control.take_events());
    if (end_.empty() && running_->control.is_open()) {
        return;
    }
    end_ = end_.empty() ? "the emulator is gone" : end_;
    running_->emulator.wait(k_emulator_end);
    hear_news();  // what came between the last look and the end
    running_.reset();
    players_.begin();
    add({monotonic_ns(), Kind::ended, end_});
}

std::string Virtual_machine::console() const {
    constexpr std::size_t k_shown = 4'000;
    std::ifstream file(running_ ? running_->directory.file("console") : "");
    std::string text{std::istreambuf_iterator<char>(file), {}};
    return text.size() > k_shown ? text.substr(text.find('\n', text.size() - k_shown) + 1) : text;
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
        for (; next < journal().size(); ++next) {
            auto const& entry = journal()[next];
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
