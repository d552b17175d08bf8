#ifndef BENCH_PROCESS_CHILD_PROCESS_H
#define BENCH_PROCESS_CHILD_PROCESS_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace bench {

/// A program that was started here, with pipes to its standard input and output; its standard error is ours. It is
/// killed when the object goes, and asked to end (SIGTERM) when the thread that started it dies, so that it can put
/// things back. Each child is ended and awaited by its own process id.
class Child_process {
 public:
    /// `words` is the program and its arguments, `environment` assignments like "A=B" on top of the caller's own.
    /// Throws `std::system_error` when the program can't be started.
    Child_process(std::vector<std::string> const& words, std::vector<std::string> const& environment);

    /// Closes the pipes, waits shortly for the end and kills what is still there.
    ~Child_process();
    Child_process(Child_process const&) = delete;
    Child_process& operator=(Child_process const&) = delete;

    pid_t pid() const { return pid_; }
    int input() const { return input_; }    ///< to the child's standard input; -1 once closed
    int output() const { return output_; }  ///< from the child's standard output

    void close_input();
    void signal(int number) const;

    /// The exit status, 128 + n when signal n ended it; nothing when it still runs after the time. The child's output
    /// must be short enough for its pipe while this waits.
    std::optional<int> wait(std::chrono::milliseconds limit);

 private:
    pid_t pid_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::optional<int> status_;
};

}  // namespace bench

#endif
