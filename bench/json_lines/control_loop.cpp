#include "bench/json_lines/control_loop.h"

#include "base/end_signals.h"
#include "bench/json_lines/clock.h"
#include "bench/json_lines/line_exchange.h"

#include <csignal>
#include <list>
#include <utility>

#include <sys/epoll.h>

namespace bench {

namespace {

// The last lines of a player may wait this long for a slow reader when it ends.
constexpr std::chrono::milliseconds k_last_words{1000};

}  // namespace

struct Control_loop::Implementation {
    // One descriptor or timer that somebody waits for.
    struct Waiter {
        Implementation* owner{nullptr};
        std::function<void()> action;
        Event_source source;
    };

    Implementation(int input, int output, Command_table const& commands) : lines(input, output, commands) {}
    ~Implementation() { sd_event_unref(loop); }
    Implementation(Implementation const&) = delete;
    Implementation& operator=(Implementation const&) = delete;

    void set_up();
    Waiter& add_waiter(std::function<void()> action);
    static int on_descriptor(sd_event_source* source, int descriptor, std::uint32_t events, void* waiter);
    static int on_time(sd_event_source* source, std::uint64_t now, void* waiter);

    sd_event* loop{nullptr};
    std::list<Waiter> waiters;
    Line_exchange lines;
};

void Control_loop::Implementation::set_up() {
    ::signal(SIGPIPE, SIG_IGN);
    auto const ends = base::heeded_end_signals();
    require(-::pthread_sigmask(SIG_BLOCK, &ends, nullptr), "pthread_sigmask");
    require(sd_event_new(&loop), "sd_event_new");
    for (int const number : base::k_end_signals) {
        if (sigismember(&ends, number) == 1) {
            require(sd_event_add_signal(loop, nullptr, number, nullptr, nullptr), "sd_event_add_signal");
        }
    }
    lines.attach(loop);
}

Control_loop::Implementation::Waiter& Control_loop::Implementation::add_waiter(std::function<void()> action) {
    auto& waiter = waiters.emplace_back();
    waiter.owner = this;
    waiter.action = std::move(action);
    return waiter;
}

int Control_loop::Implementation::on_descriptor(sd_event_source* /*source*/, int /*descriptor*/,
                                                std::uint32_t /*events*/, void* waiter) {
    static_cast<Waiter*>(waiter)->action();
    return 0;
}

int Control_loop::Implementation::on_time(sd_event_source* /*source*/, std::uint64_t /*now*/, void* waiter) {
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
    implementation_->lines.send(details);
}

void Control_loop::watch(int descriptor, std::function<void()> ready) {
    auto& waiter = implementation_->add_waiter(std::move(ready));
    sd_event_source* source = nullptr;
    require(
        sd_event_add_io(implementation_->loop, &source, descriptor, EPOLLIN, &Implementation::on_descriptor, &waiter),
        "sd_event_add_io");
    waiter.source.reset(source);
}

void Control_loop::after(std::chrono::milliseconds delay, std::function<void()> action) {
    auto& waiter = implementation_->add_waiter(std::move(action));
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
    implementation_->lines.drain(k_last_words);
    return status;
}

void Control_loop::stop(int exit_status) {
    sd_event_exit(implementation_->loop, exit_status);
}

sd_event* Control_loop::native() {
    return implementation_->loop;
}

}  // namespace bench
