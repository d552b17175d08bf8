#include "tools/check/left_behind.h"

#include "base/end_signals.h"

#include <csignal>

#include <unistd.h>

namespace statectl::check {

namespace {

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
void remove_all(int number) {
    if (running_program > 0) {
        ::kill(-running_program, SIGKILL);
    }
    ::unlink(socket_to_remove);
    ::rmdir(directory_to_remove);
    ::signal(number, SIG_DFL);
    ::raise(number);
}

}  // namespace

void remove_at_signals(std::string const& directory_path, std::string const& path) {
    Signals_held const held;
    directory() = directory_path;
    socket_path() = path;
    directory_to_remove = directory().c_str();
    socket_to_remove = socket_path().c_str();
    base::handle_end_signals(remove_all);
}

Signals_held::Signals_held() {
    auto const signals = base::end_signals();
    ::sigprocmask(SIG_BLOCK, &signals, &before_);
}

Signals_held::~Signals_held() {
    ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void set_running_program(pid_t group) {
    running_program = group;
}

void forget_what_is_left_behind() {
    base::handle_end_signals(SIG_DFL);
}

}  // namespace statectl::check
