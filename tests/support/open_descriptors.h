#ifndef TESTS_SUPPORT_OPEN_DESCRIPTORS_H
#define TESTS_SUPPORT_OPEN_DESCRIPTORS_H

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

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

}  // namespace test_support

#endif
