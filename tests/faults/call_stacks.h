#ifndef TESTS_FAULTS_CALL_STACKS_H
#define TESTS_FAULTS_CALL_STACKS_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

struct Dwfl;

namespace faults {

/// The stack of one call, the same in each life: addresses count from the begin of their library.
struct Call_stack {
    std::uint64_t id{0};
    bool is_of_loader{false};  ///< made by the dynamic loader, before the program's own code or for it
    std::vector<std::uint64_t> addresses;
};

/// Stacks of a process whose threads are stopped by the caller, found by the tables that C++ exceptions use.
class Call_stacks {
 public:
    explicit Call_stacks(pid_t pid);
    ~Call_stacks();
    Call_stacks(Call_stacks const&) = delete;
    Call_stacks& operator=(Call_stacks const&) = delete;

    /// Of a stopped thread; `call` makes equal stacks of different calls differ.
    Call_stack of(pid_t thread, long call);

    /// "program function" of each frame.
    std::vector<std::string> names(Call_stack const& stack) const;

 private:
    bool walk(pid_t thread, std::vector<std::uint64_t>& addresses) const;
    void look_up_libraries();

    pid_t pid_;
    std::unique_ptr<Dwfl, void (*)(Dwfl*)> session_;
    bool is_attached_{false};
};

}  // namespace faults

#endif
