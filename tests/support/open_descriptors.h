#ifndef TESTS_SUPPORT_OPEN_DESCRIPTORS_H
#define TESTS_SUPPORT_OPEN_DESCRIPTORS_H

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace test_support {

/// This process's descriptors that are open on a file, in no particular order.
inline std::vector<int> descriptors_on(std::filesystem::path const& file) {
    std::vector<int> found;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;  // the iterator's own descriptor
        if (std::filesystem::read_symlink(entry.path(), gone) == file) {
            found.push_back(std::stoi(entry.path().filename()));
        }
    }
    return found;
}

/// The lowest descriptor that is free.
inline int next_descriptor() {
    int const descriptor = ::dup(0);
    ::close(descriptor);
    return descriptor;
}

/// Raises the number of descriptors that this process may have to `needed`, as far as it may. Returns how many it may
/// have then.
inline rlim_t allow_descriptors(rlim_t needed) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < needed) {
        limit.rlim_cur = std::min(limit.rlim_max, needed);
        ::setrlimit(RLIMIT_NOFILE, &limit);
        ::getrlimit(RLIMIT_NOFILE, &limit);
    }
    return limit.rlim_cur;
}

}  // namespace test_support

#endif
