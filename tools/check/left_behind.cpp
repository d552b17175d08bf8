#include "tools/check/left_behind.h"

#include <array>
#include <csignal>

#include <unistd.h>

namespace statectl::check {

namespace {

constexpr std::array<int, 4> k_end_signals{SIGHUP, SIGINT, SIGQUIT, SIGTERM};

// Never destroyed, and not changed after the handler was installed, but for the program.
std::string& directory() {
    static auto& path = *new std::string;
    return path;
}

std::string& socket_path() {
    static auto& path = *new std::string;
    return path;
}

char const* directory_to_remove = nullptr;
char const* socket_to_remove = nullptr;
volatile pid_t running_program = 0;

// Only what is allowed in a signal handler. The signal itself comes again when this returns.
void take_along(int number) {
    if (running_program > 0) {
        ::kill(-running_program, SIGKILL);
    }
    ::unlink(socket_to_remove);
    ::rmdir(directory_to_remove);
    ::signal(number, SIG_DFL);
    ::raise(number);
}

void handle(void (*handler)(int)) {
    for (int const number : k_end_signals) {
        struct sigaction action {};
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = handler;
            action.sa_flags = SA_RESTART;
            ::sigaction(number, &action, nullptr);
        }
    }
}

}  // namespace

void take_along_at_signals(std::string const& directory_path, std::string const& path) {
    Signals_held const held;
    directory() = directory_path;
    socket_path() = path;
    directory_to_remove = directory().c_str();
    socket_to_remove = socket_path().c_str();
    handle(take_along);
}

Signals_held::Signals_held() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (int const number : k_end_signals) {
        ::sigaddset(&signals, number);
    }
    ::sigprocmask(SIG_BLOCK, &signals, &before_);
}

Signals_held::~Signals_held() {
    ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void set_running_program(pid_t group) {
    running_program = group;
}

void forget_what_is_left_behind() {
    handle(SIG_DFL);
}

}  // namespace statectl::check
