#ifndef TESTS_SUPPORT_FILE_SIZE_LIMIT_H
#define TESTS_SUPPORT_FILE_SIZE_LIMIT_H

#include <csignal>

#include <sys/resource.h>

namespace test_support {

/// No file of this process grows beyond so many bytes while this lives: a write that would is cut short at the limit,
/// and fails with EFBIG when it starts there. The way to a failing and a short write that needs no special file.
class File_size_limit {
 public:
    explicit File_size_limit(rlim_t bytes) : old_handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old_limit_);
        rlimit const limit{bytes, old_limit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~File_size_limit() {
        ::setrlimit(RLIMIT_FSIZE, &old_limit_);
        static_cast<void>(std::signal(SIGXFSZ, old_handler_));
    }
    File_size_limit(File_size_limit const&) = delete;
    File_size_limit& operator=(File_size_limit const&) = delete;

 private:
    void (*old_handler_)(int);
    rlimit old_limit_{};
};

}  // namespace test_support

#endif
