#ifndef TESTS_SUPPORT_NO_MEMORY_H
#define TESTS_SUPPORT_NO_MEMORY_H

namespace test_support {

/// While it lives, `operator new` fails on this thread: whatever is asked for, or once, after so many that are given.
/// One at a time; in programs that link `test_support_no_memory`.
class No_memory {
 public:
    No_memory();
    explicit No_memory(int given);
    ~No_memory();
    No_memory(No_memory const&) = delete;
    No_memory& operator=(No_memory const&) = delete;

    /// Whether something was refused.
    bool was_met() const;
};

}  // namespace test_support

#endif
