#ifndef BENCH_HYPERVISOR_CONTROL_FILE_H
#define BENCH_HYPERVISOR_CONTROL_FILE_H

#include "bench/hypervisor/fault_plan.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace bench::hypervisor {

/// One write of a program to a control file, as the hypervisor saw it.
struct Request {
    std::uint64_t number{0};  ///< 1 for the file's first
    std::int64_t time{0};     ///< CLOCK_MONOTONIC nanoseconds at its arrival
    std::int64_t offset{0};   ///< where the writer stood in the file; has no meaning to the hypervisor
    std::string bytes;        ///< all that the program wrote, accepted or not
    std::size_t accepted{0};  ///< bytes that the write reports as written
    int error{0};             ///< errno that it fails with; 0 for success
    std::chrono::milliseconds delay{0};
};

/// A VM-control file: every write is one request, whatever its offset; nothing is stored as file content.
class Control_file {
 public:
    /// The newest requests are kept for the journal, this many.
    static constexpr std::size_t k_journal_length = 4096;

    explicit Control_file(std::string name) : name_(std::move(name)) {}

    /// Records the request and decides how it ends. The reference holds until the next write.
    Request const& write(std::string_view bytes, std::int64_t offset, std::int64_t time);

    std::deque<Request> const& journal() const { return journal_; }
    std::string const& name() const { return name_; }
    Fault_plan& faults() { return faults_; }

 private:
    std::string name_;
    Fault_plan faults_;
    std::uint64_t requests_{0};
    std::deque<Request> journal_;
};

}  // namespace bench::hypervisor

#endif
