#include "evicted_files.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace benchmarks {

namespace {

constexpr std::chrono::milliseconds k_pause{20};

// The ranges of a process that a file on a disk is mapped to.
std::vector<iovec> files_of(pid_t process) {
    std::vector<iovec> ranges;
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        std::istringstream(line) >> std::hex >> begin >> dash >> end;
        bool const is_on_disk =
            line.find(" /usr/") != std::string::npos || line.find(" " PROGRAMS) != std::string::npos;
        if (is_on_disk) {
            ranges.push_back({reinterpret_cast<void*>(begin), end - begin});  // NOLINT(performance-no-int-to-ptr)
        }
    }
    return ranges;
}

}  // namespace

Evicted_files::Evicted_files(pid_t process)
    : process_(process), thread_([this] {
          while (!is_to_end_) {
              evict();
              std::this_thread::sleep_for(k_pause);
          }
      }) {}

Evicted_files::~Evicted_files() {
    is_to_end_ = true;
    thread_.join();
}

void Evicted_files::evict() const {
    int const process = static_cast<int>(::syscall(SYS_pidfd_open, process_, 0));
    for (auto const& range : files_of(process_)) {
        static_cast<void>(::syscall(SYS_process_madvise, process, &range, 1, MADV_PAGEOUT, 0));
    }
    ::close(process);
}

}  // namespace benchmarks
