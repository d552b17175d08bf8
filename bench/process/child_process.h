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
/// things back. Each child is ended and awaited by its own process id. An end that nobody asked for is told
/// (unasked_end.h) when the object goes: neither status 0, nor a signal that was sent from here, nor a status that its
/// owner was given by `wait` and judges himself.
class Child_process {
 public:
    /// `words` is the program and its arguments, `environment` assignments like "A=B" on top of the caller's own.
    /// Throws `std::system_error` when the program can't be started.
    Child_process(std::vector<std::string> const& words, std::vector<std::string> const& environment);

    /// Closes the pipes, waits for the end and kills what is still there, which is an end that nobody asked for.
    ~Child_process();
    Child_process(Child_process const&) = delete;
    Child_process& operator=(Child_process const&) = delete;

    pid_t pid() const { return pid_; }
    int input() const { return input_; }    ///< to the child's standard input; -1 once closed
    int output() const { return output_; }  ///< from the child's standard output

    void close_input();
    void signal(int number);

    /// A status that is asked for, by whatever way the program is told.
    void expect(int status) { expected_.push_back(status); }

    /// The exit status, 128 + n when signal n ended it; nothing when it still runs after the time. The child's output
    /// must be short enough for its pipe while this waits.
    std::optional<int> wait(std::chrono::milliseconds limit);

    /// The exit status once it has ended, for those who don't judge it.
    std::optional<int> status() {
        end_within({});
        return status_;
    }

 private:
    bool end_within(std::chrono::milliseconds limit);
    void tell_unasked_end() const;

    std::string const name_;
    pid_t pid_{-1};
    int input_{-1};
    int output_{-1};
    std::optional<int> status_;
    std::vector<int> expected_;
};

}  // namespace bench

#endif
