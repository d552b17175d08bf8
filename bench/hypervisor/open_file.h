#ifndef BENCH_HYPERVISOR_OPEN_FILE_H
#define BENCH_HYPERVISOR_OPEN_FILE_H

#include "bench/hypervisor/fuse_api.h"
#include "bench/hypervisor/model.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>

namespace bench::hypervisor {

struct Poll_handle_deleter {
    void operator()(fuse_pollhandle* handle) const { fuse_pollhandle_destroy(handle); }
};

/// A file that a program has open, from open to release.
struct Open_file {
    /// A read that waits for a record because the program opened the device for blocking.
    struct Waiting_read {
        fuse_req_t request;
        std::size_t space;
    };

    std::uint64_t handle{0};
    std::shared_ptr<Input_device> device;  ///< one of the two is set
    std::shared_ptr<Control_file> control_file;
    std::unique_ptr<fuse_pollhandle, Poll_handle_deleter> poll_handle;  ///< whom to wake when the device changes
    std::list<Waiting_read> waiting_reads;
};

/// All open files by their handle; a handle is never used twice.
class Open_files {
 public:
    Open_file& add(std::shared_ptr<Input_device> device, std::shared_ptr<Control_file> control_file);
    Open_file& at(std::uint64_t handle) { return files_.at(handle); }
    void remove(std::uint64_t handle);

    std::map<std::uint64_t, Open_file>& all() { return files_; }

 private:
    std::map<std::uint64_t, Open_file> files_;
    std::uint64_t next_handle_{1};
};

}  // namespace bench::hypervisor

#endif
