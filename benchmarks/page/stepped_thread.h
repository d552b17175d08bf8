#ifndef BENCHMARKS_PAGE_STEPPED_THREAD_H
#define BENCHMARKS_PAGE_STEPPED_THREAD_H

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

#include <sys/types.h>

namespace benchmarks {

/// What a thread has done in between.
struct Work {
    std::uint64_t instructions = 0;  ///< of the program; those of the system are not seen
    std::uint64_t calls = 0;         ///< of the system
};

/// A system call that the thread is about to make.
struct Call {
    long number = 0;
    std::uint64_t argument[3] = {};
};

/// The first thread of a process, which runs one instruction at a time while it is led, so that what it does is counted
/// and no load of the machine changes the count. All other threads run as ever. Used by one thread; throws
/// `std::runtime_error` where a process may not be led.
class Stepped_thread {
 public:
    explicit Stepped_thread(pid_t process);
    ~Stepped_thread();
    Stepped_thread(Stepped_thread const&) = delete;
    Stepped_thread& operator=(Stepped_thread const&) = delete;

    /// Leads it until it is about to wait for input (epoll_wait), and tells what it did since the call.
    Work until_it_waits();

    /// The same, until it is about to write a text.
    Work until_it_writes(std::string const& text);

    /// How many of the instructions since the last look lie in which file: "libc.so.6".
    std::map<std::string, std::uint64_t> take_shares();

 private:
    template <class Predicate>
    Work until(Predicate const& is_there);
    void step();
    bool is_at_call(Call& call);
    bool has_text_at(std::uint64_t address, std::string const& text) const;

    pid_t process_;
    std::unordered_map<std::uint64_t, bool> is_call_;        // by the instruction's address
    std::unordered_map<std::uint64_t, std::uint64_t> done_;  // how often
};

}  // namespace benchmarks

#endif
