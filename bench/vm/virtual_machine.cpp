#include "bench/vm/virtual_machine.h"

#include "bench/json_lines/clock.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

#include <poll.h>

namespace bench::vm {

using vehicle::Kind;

namespace {

constexpr std::chrono::seconds k_emulator_end{5};

}  // namespace

/// What there is only while the machine is on.
struct Virtual_machine::Running {
    explicit Running(Machine_options const& options)
        : emulator(command_line(options, directory.path().string()), {}),
          control(directory.file("control")),
          log(directory.file("log")),
          state(directory.file("state")),
          restart(directory.file("restart")),
          journal(directory.file("journal")),
          shell(directory.file("shell")) {}

    Scratch_directory directory;
    Child_process emulator;
    Qmp control;
    Port log;
    Port state;
    Port restart;
    Port journal;
    Shell shell;
    Dlt_stream log_stream{};
    Word_splitter state_words{};
    Word_splitter restart_words{};
    Journal entries{};
};

Virtual_machine::Virtual_machine(Machine_options options) : options_(std::move(options)) {}

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
    clock_offset_ = std::numeric_limits<std::int64_t>::max();
    running_ = std::make_unique<Running>(options_);
}

void Virtual_machine::press(std::string const& key) {
    hypervisor().press(key);
    add({monotonic_ns(), Kind::key, key});
}

void Virtual_machine::signal_daemon(int number) {
    shell().start("systemctl kill --signal=" + std::to_string(number) + " ap_statemanager.service");
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
    std::array<pollfd, 5> sources{{{running_->log.descriptor(), POLLIN, 0},
                                   {running_->state.descriptor(), POLLIN, 0},
                                   {running_->restart.descriptor(), POLLIN, 0},
                                   {running_->journal.descriptor(), POLLIN, 0},
                                   {running_->control.descriptor(), POLLIN, 0}}};
    ::poll(sources.data(), sources.size(), static_cast<int>(limit.count()));
    take_words();
    take_log();
    take_journal();
    take_end();
}

void Virtual_machine::take_words() {
    for (auto& word : running_->state_words.add(running_->state.take())) {
        add({monotonic_ns(), Kind::state_word, std::move(word)});
    }
    for (auto& word : running_->restart_words.add(running_->restart.take())) {
        add({monotonic_ns(), Kind::restart_word, std::move(word)});
    }
}

void Virtual_machine::take_log() {
    for (auto& message : running_->log_stream.add(running_->log.take())) {
        message.time = to_host_time(message.time);
        add(std::move(message));
    }
}

void Virtual_machine::take_journal() {
    for (auto& entry : running_->entries.add(running_->journal.take())) {
        if (auto event = to_event(entry)) {
            event->time = to_host_time(event->time);
            add(std::move(*event));
        }
        journal_.push_back(std::move(entry));
    }
}

void Virtual_machine::take_end() {
    auto const events = running_->control.take_events();
    if (std::find(events.begin(), events.end(), "SHUTDOWN") == events.end()) {
        return;
    }
    running_->emulator.wait(k_emulator_end);
    running_.reset();
    add({monotonic_ns(), Kind::ended, "power off"});
}

// Nothing arrives before it was sent, so the shortest way seen so far is nearest to the difference of the clocks.
std::int64_t Virtual_machine::to_host_time(std::int64_t machine_time) {
    clock_offset_ = std::min(clock_offset_, monotonic_ns() - machine_time);
    return machine_time + clock_offset_;
}

bool Virtual_machine::await_power_off(std::chrono::milliseconds limit) {
    auto const deadline = std::chrono::steady_clock::now() + limit;
    while (is_on() && std::chrono::steady_clock::now() < deadline) {
        update(k_poll);
    }
    return !is_on();
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
