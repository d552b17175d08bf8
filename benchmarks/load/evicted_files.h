#ifndef BENCHMARKS_LOAD_EVICTED_FILES_H
#define BENCHMARKS_LOAD_EVICTED_FILES_H

#include <atomic>
#include <thread>

#include <sys/types.h>

namespace benchmarks {

/// Takes the pages of its files that a process has mapped away from it, again and again while this lives, as a machine
/// does whose memory is short: what it needs next is read from the disk. Pages that another process has mapped as well
/// stay, and so does what belongs to no file, since there is no swap.
class Evicted_files {
 public:
    explicit Evicted_files(pid_t process);
    ~Evicted_files();
    Evicted_files(Evicted_files const&) = delete;
    Evicted_files& operator=(Evicted_files const&) = delete;

 private:
    void evict() const;

    pid_t process_;
    std::atomic<bool> is_to_end_{false};
    std::thread thread_;
};

}  // namespace benchmarks

#endif
