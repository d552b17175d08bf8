#ifndef TOOLS_CHECK_PROGRAM_H
#define TOOLS_CHECK_PROGRAM_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace statectl::check {

/// How the program under check is started.
struct Start {
    std::vector<std::string> words;  ///< the program and its arguments
    std::string socket_path;         ///< told to it in the environment
    bool in_private_place;           ///< sees the socket's directory where this machine's is, see private_place.h
};

/// The program under check: a process group of its own, which is killed with the object. Its standard input is empty,
/// its output goes to our standard error.
class Program {
 public:
    /// Throws std::runtime_error when it can't be started.
    explicit Program(Start const& start);
    ~Program();
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;

    /// The system's word for how it has ended, "status 1" or "signal 11"; nothing when it still runs after the time.
    std::optional<std::string> await_end(std::chrono::milliseconds limit);

    void ask_to_end() const;

 private:
    pid_t pid_;
    std::optional<std::string> end_;
};

}  // namespace statectl::check

#endif
