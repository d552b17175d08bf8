#ifndef BENCH_HYPERVISOR_FILE_SERVER_H
#define BENCH_HYPERVISOR_FILE_SERVER_H

#include "bench/hypervisor/device_reads.h"
#include "bench/hypervisor/file_tree.h"
#include "bench/hypervisor/fuse_api.h"
#include "bench/hypervisor/held_answers.h"
#include "bench/hypervisor/open_file.h"
#include "bench/json_lines/control_loop.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace bench::hypervisor {

/// Answers the kernel's requests on the tree's files out of the model, and reports each open, read, ioctl, write and
/// close as an event. Each operation answers its request exactly once, some later. All on the loop's thread.
class File_server {
 public:
    /// Both must outlive the server.
    File_server(Model& model, Control_loop& loop);

    void look_up(fuse_req_t request, std::uint64_t directory, std::string const& name);
    void get_attributes(fuse_req_t request, std::uint64_t inode);
    void set_attributes(fuse_req_t request, std::uint64_t inode);
    void list(fuse_req_t request, std::uint64_t directory, std::size_t space, off_t position);
    void open(fuse_req_t request, std::uint64_t inode, fuse_file_info const& info);
    void read(fuse_req_t request, std::size_t space, fuse_file_info const& info);
    void write(fuse_req_t request, std::string_view bytes, off_t offset, fuse_file_info const& info);
    void control(fuse_req_t request, unsigned command, std::size_t space, fuse_file_info const& info);
    void poll(fuse_req_t request, fuse_file_info const& info, fuse_pollhandle* handle);
    void release(fuse_req_t request, fuse_file_info const& info);

    /// Answers everything that still waits; the server serves no more after it.
    void finish();

 private:
    Control_loop& loop_;
    File_tree tree_;
    Open_files files_;
    Held_answers held_;
    Device_reads reads_;
};

}  // namespace bench::hypervisor

#endif
