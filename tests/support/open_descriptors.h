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

/// So many descriptors can still be opened while it lives.
class Descriptors_left {
 public:
    explicit Descriptors_left(std::size_t left) {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        rlimit few = before_;
        few.rlim_cur = std::min<rlim_t>(before_.rlim_max, static_cast<rlim_t>(next_descriptor()) + 20);
        ::setrlimit(RLIMIT_NOFILE, &few);
        for (int taken = ::dup(0); taken >= 0; taken = ::dup(0)) {
            taken_.push_back(taken);
        }
        for (std::size_t i = 0; i < left; ++i) {
            ::close(taken_.back());
            taken_.pop_back();
        }
    }
    ~Descriptors_left() {
        for (int const taken : taken_) {
            ::close(taken);
        }
        ::setrlimit(RLIMIT_NOFILE, &before_);
    }
    Descriptors_left(Descriptors_left const&) = delete;
    Descriptors_left& operator=(Descriptors_left const&) = delete;

 private:
    rlimit before_{};
    std::vector<int> taken_;
};

}  // namespace test_support

#endif
