#include "bench/json_lines/control_loop.h"

#include "bench/json_lines/clock.h"
#include "bench/json_lines/line_splitter.h"
#include "bench/json_lines/output_queue.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <list>
#include <system_error>
#include <utility>

#include <sys/epoll.h>
#include <systemd/sd-event.h>
#include <unistd.h>

namespace bench {

namespace {

// The last lines of a player may wait this long for a slow reader when it ends.
constexpr std::chrono::milliseconds k_last_words{1000};

void require(int result, char const* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
}

std::string to_line(nlohmann::json const& message) {
    return message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

struct Source_deleter {
    void operator()(sd_event_source* source) const { sd_event_source_disable_unref(source); }
};
using Source = std::unique_ptr<sd_event_source, Source_deleter>;

}  // namespace

struct Control_loop::Implementation {
    // One descriptor or timer that somebody waits for.
    struct Waiter {
        Implementation* owner = nullptr;
        std::function<void()> action;
        Source source;
    };

    Implementation(int input_descriptor, int output_descriptor, Command_table const& table)
        : input(input_descriptor), output(output_descriptor), commands(table), queue(output_descriptor) {}
    ~Implementation() { sd_event_unref(loop); }
    Implementation(Implementation const&) = delete;
    Implementation& operator=(Implementation const&) = delete;

    void set_up();
    void set_up_input();
    void send(nlohmann::json const& message);
    void take_input();
    void answer_waiting_lines();
    static int on_input(sd_event_source* source, int descriptor, std::uint32_t events, void* self);
    static int on_input_always(sd_event_source* source, void* self);
    static int on_output(sd_event_source* source, int descriptor, std::uint32_t events, void* self);
    static int on_descriptor(sd_event_source* source, int descriptor, std::uint32_t events, void* waiter);
    static int on_time(sd_event_source* source, std::uint64_t now, void* waiter);

    int const input;
    int const output;
    Command_table const& commands;
    Output_queue queue;
    Line_splitter lines;
    std::uint64_t reported_drops = 0;
    sd_event* loop = nullptr;
    std::list<Waiter> waiters;
    Source input_source;
    Source output_source;
};

void Control_loop::Implementation::set_up() {
    ::signal(SIGPIPE, SIG_IGN);
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    require(-::pthread_sigmask(SIG_BLOCK, &ends, nullptr), "pthread_sigmask");
    require(sd_event_new(&loop), "sd_event_new");
    require(sd_event_add_signal(loop, nullptr, SIGTERM, nullptr, nullptr), "sd_event_add_signal");
    require(sd_event_add_signal(loop, nullptr, SIGINT, nullptr, nullptr), "sd_event_add_signal");
    set_up_input();
}

void Control_loop::Implementation::set_up_input() {
    sd_event_source* source = nullptr;
    int result = sd_event_add_io(loop, &source, input, EPOLLIN, &on_input, this);
    if (result == -EPERM) {
        // A regular file can't be waited for; it can always be read.
        result = sd_event_add_defer(loop, &source, &on_input_always, this);
        require(result, "sd_event_add_defer");
        sd_event_source_set_enabled(source, SD_EVENT_ON);
    }
    require(result, "sd_event_add_io");
    input_source.reset(source);
    result = sd_event_add_io(loop, &source, output, EPOLLOUT, &on_output, this);
    if (result >= 0) {
        output_source.reset(source);
        sd_event_source_set_enabled(source, SD_EVENT_OFF);
    }
}

void Control_loop::Implementation::send(nlohmann::json const& message) {
    queue.send(to_line(message));
    if (queue.dropped() != reported_drops && !queue.waiting()) {
        std::uint64_t const lost = queue.dropped() - std::exchange(reported_drops, queue.dropped());
        queue.send(to_line({{"event", "lost"}, {"count", lost}, {"t", monotonic_ns()}}));
    }
    if (output_source) {
        sd_event_source_set_enabled(output_source.get(), queue.waiting() ? SD_EVENT_ON : SD_EVENT_OFF);
    }
}

void Control_loop::Implementation::take_input() {
    std::array<char, 4096> bytes{};
    ssize_t const count = ::read(input, bytes.data(), bytes.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    if (count > 0) {
        lines.add({bytes.data(), static_cast<std::size_t>(count)});
        answer_waiting_lines();
        return;
    }
    if (auto const last = lines.rest()) {
        send(commands.answer(*last));
    }
    sd_event_exit(loop, 0);
}

void Control_loop::Implementation::answer_waiting_lines() {
    while (auto const line = lines.next()) {
        if (line->find_first_not_of(" \t\r") != std::string::npos) {
            send(commands.answer(*line));
        }
    }
}

int Control_loop::Implementation::on_input(sd_event_source*, int, std::uint32_t, void* self) {
    static_cast<Implementation*>(self)->take_input();
    return 0;
}

int Control_loop::Implementation::on_input_always(sd_event_source*, void* self) {
    static_cast<Implementation*>(self)->take_input();
    return 0;
}

int Control_loop::Implementation::on_output(sd_event_source* source, int, std::uint32_t, void* self) {
    auto& queue = static_cast<Implementation*>(self)->queue;
    queue.flush();
    if (!queue.waiting()) {
        sd_event_source_set_enabled(source, SD_EVENT_OFF);
    }
    return 0;
}

int Control_loop::Implementation::on_descriptor(sd_event_source*, int, std::uint32_t, void* waiter) {
    static_cast<Waiter*>(waiter)->action();
    return 0;
}

int Control_loop::Implementation::on_time(sd_event_source*, std::uint64_t, void* waiter) {
    auto* const self = static_cast<Waiter*>(waiter);
    auto const action = std::move(self->action);
    self->owner->waiters.remove_if([self](Waiter const& other) { return &other == self; });
    action();
    return 0;
}

Control_loop::Control_loop(int input, int output, Command_table const& commands)
    : implementation_(std::make_unique<Implementation>(input, output, commands)) {
    implementation_->set_up();
}

Control_loop::~Control_loop() = default;

void Control_loop::event(std::string const& name, nlohmann::json details) {
    details["event"] = name;
    if (!details.contains("t")) {
        details["t"] = monotonic_ns();
    }
    implementation_->send(details);
}

void Control_loop::watch(int descriptor, std::function<void()> ready) {
    auto& waiter = implementation_->waiters.emplace_back();
    waiter.owner = implementation_.get();
    waiter.action = std::move(ready);
    sd_event_source* source = nullptr;
    require(
        sd_event_add_io(implementation_->loop, &source, descriptor, EPOLLIN, &Implementation::on_descriptor, &waiter),
        "sd_event_add_io");
    waiter.source.reset(source);
}

void Control_loop::after(std::chrono::milliseconds delay, std::function<void()> action) {
    auto& waiter = implementation_->waiters.emplace_back();
    waiter.owner = implementation_.get();
    waiter.action = std::move(action);
    std::chrono::microseconds const microseconds = delay;
    sd_event_source* source = nullptr;
    require(sd_event_add_time_relative(implementation_->loop, &source, CLOCK_MONOTONIC,
                                       static_cast<std::uint64_t>(microseconds.count()), 1, &Implementation::on_time,
                                       &waiter),
            "sd_event_add_time_relative");
    waiter.source.reset(source);
}

int Control_loop::run() {
    int const status = sd_event_loop(implementation_->loop);
    implementation_->queue.drain(k_last_words);
    return status;
}

void Control_loop::stop(int exit_status) {
    sd_event_exit(implementation_->loop, exit_status);
}

sd_event* Control_loop::native() {
    return implementation_->loop;
}

}  // namespace bench
