#include "tools/check/program.h"

#include "component_client/socket_path.h"
#include "tools/check/left_behind.h"
#include "tools/check/private_place.h"
#include "utilities/socket.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace statectl::check {

namespace {

[[noreturn]] void become(Start const& start) {
    ::setpgid(0, 0);
    forget_what_is_left_behind();
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::setenv(component_client::k_socket_variable, start.socket_path.c_str(), 1);
    if (start.in_private_place) {
        enter_private_place(std::filesystem::path(start.socket_path).parent_path());
    }
    ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    std::vector<char*> words;
    for (auto const& word : start.words) {
        words.push_back(const_cast<char*>(word.c_str()));
    }
    words.push_back(nullptr);
    ::execvp(words.front(), words.data());
    throw std::runtime_error(std::strerror(errno));
}

// What keeps the child from becoming the program comes through a pipe that closes when it has.
pid_t start_child(Start const& start) {
    ::signal(SIGCHLD, SIG_DFL);  // one that is ignored, which is handed down, would take along how the program ends
    Signals_held const held;
    auto [ours, childs] = utilities::socket_pair();
    pid_t const child = ::fork();
    if (child == 0) {
        try {
            become(start);
        } catch (std::exception const& error) {
            childs.sendl(error.what(), std::strlen(error.what()), 0);
        }
        ::_exit(EXIT_FAILURE);
    }
    childs = utilities::Socket();
    std::array<char, 512> text{};
    try {
        ours.recv(text.data(), text.size() - 1, 0);
    } catch (utilities::ExceptionSocketClosed const&) {
        set_running_program(child);
        return child;
    }
    ::waitpid(child, nullptr, 0);
    throw std::runtime_error(start.words.front() + " can't be started: " + text.data());
}

}  // namespace

Program::Program(Start const& start) : pid_(start_child(start)) {}

Program::~Program() {
    ::kill(-pid_, SIGKILL);
    await_end(std::chrono::seconds(1));
    set_running_program(0);
}

void Program::ask_to_end() const {
    ::kill(-pid_, SIGTERM);
}

std::optional<std::string> Program::await_end(std::chrono::milliseconds limit) {
    if (end_) {
        return end_;
    }
    utilities::Socket const process(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
    int status = 0;
    if (process.poll(POLLIN, limit.count()).second) {
        ::waitpid(pid_, &status, 0);
        end_ = WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                                   : "status " + std::to_string(WEXITSTATUS(status));
    }
    return end_;
}

}  // namespace statectl::check
