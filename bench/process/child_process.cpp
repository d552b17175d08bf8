#include "bench/process/child_process.h"

#include "bench/process/end_signals.h"
#include "bench/process/unasked_end.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

constexpr std::chrono::milliseconds k_time_to_end{10'000};  // long for a busy machine: only failures take it

[[noreturn]] void fail(char const* what, int error) {
    throw std::system_error(error, std::generic_category(), what);
}

struct Pipe {
    int read_end{-1};
    int write_end{-1};
};

Pipe make_pipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail("pipe2", errno);
    }
    return {ends[0], ends[1]};
}

std::vector<char*> pointers_to(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> merged(std::vector<std::string> assignments) {
    std::vector<std::string> names;
    names.reserve(assignments.size());
    for (std::string const& assignment : assignments) {
        names.push_back(assignment.substr(0, assignment.find('=') + 1));
    }
    for (char** inherited = environ; *inherited != nullptr; ++inherited) {
        std::string const assignment = *inherited;
        bool replaced = false;
        for (std::string const& name : names) {
            replaced = replaced || assignment.rfind(name, 0) == 0;
        }
        if (!replaced) {
            assignments.push_back(assignment);
        }
    }
    return assignments;
}

// Runs in the child between fork and exec: only what is allowed there.
[[noreturn]] void become(std::vector<char*> const& words, std::vector<char*> const& environment, int input, int output,
                         int report) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::execvpe(words[0], words.data(), environment.data());
    int const error = errno;
    static_cast<void>(!::write(report, &error, sizeof error));
    ::_exit(EXIT_FAILURE);
}

}  // namespace

Child_process::Child_process(std::vector<std::string> const& words, std::vector<std::string> const& environment)
    : name_(words.front()), expected_{EXIT_SUCCESS} {
    std::vector<std::string> own_words = words;
    std::vector<std::string> own_environment = merged(environment);
    auto const word_pointers = pointers_to(own_words);
    auto const environment_pointers = pointers_to(own_environment);
    Pipe const to_child = make_pipe();
    Pipe const from_child = make_pipe();
    Pipe const report = make_pipe();
    pid_ = ::fork();
    if (pid_ == 0) {
        become(word_pointers, environment_pointers, to_child.read_end, from_child.write_end, report.write_end);
    }
    int const fork_error = pid_ < 0 ? errno : 0;
    for (int const end : {to_child.read_end, from_child.write_end, report.write_end}) {
        ::close(end);
    }
    input_ = to_child.write_end;
    output_ = from_child.read_end;
    int exec_error = 0;
    bool const failed = ::read(report.read_end, &exec_error, sizeof exec_error) > 0;
    ::close(report.read_end);
    if (fork_error != 0 || failed) {
        close_input();
        ::close(output_);
        if (pid_ > 0) {
            ::waitpid(pid_, nullptr, 0);
        }
        fail(words.front().c_str(), failed ? exec_error : fork_error);
    }
}

Child_process::~Child_process() {
    close_input();
    ::close(output_);
    if (end_within(k_time_to_end)) {
        tell_unasked_end();
    } else {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
        unasked_end(name_ + " did not end when it was told to");
    }
}

void Child_process::tell_unasked_end() const {
    if (std::find(expected_.begin(), expected_.end(), *status_) == expected_.end()) {
        unasked_end(name_ + " ended with status " + std::to_string(*status_) + ", for which nobody had asked");
    }
}

void Child_process::close_input() {
    if (input_ >= 0) {
        ::close(input_);
        input_ = -1;
    }
}

void Child_process::signal(int number) {
    if (!status_) {
        expect(k_signal_status + number);
        ::kill(pid_, number);
    }
}

std::optional<int> Child_process::wait(std::chrono::milliseconds limit) {
    if (end_within(limit)) {
        expect(*status_);
    }
    return status_;
}

bool Child_process::end_within(std::chrono::milliseconds limit) {
    auto const end = std::chrono::steady_clock::now() + limit;
    while (!status_) {
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_) {
            status_ = WIFSIGNALED(status) ? k_signal_status + WTERMSIG(status) : WEXITSTATUS(status);
        } else if (std::chrono::steady_clock::now() >= end) {
            break;
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return status_.has_value();
}

}  // namespace bench
