#ifndef BENCH_HYPERVISOR_DEVICE_READS_H
#define BENCH_HYPERVISOR_DEVICE_READS_H

#include "bench/hypervisor/fuse_api.h"
#include "bench/hypervisor/held_answers.h"
#include "bench/hypervisor/open_file.h"
#include "bench/json_lines/control_loop.h"

#include <cstddef>

namespace bench::hypervisor {

/// Reads of input devices. One waits until the device has something, or its program is interrupted; whoever polls a
/// device is told when it changes. All on the loop's thread.
class Device_reads {
 public:
    /// Becomes the model's listener. All four must outlive this.
    Device_reads(Model& model, Open_files& files, Held_answers& held, Control_loop& loop);
    ~Device_reads();
    Device_reads(Device_reads const&) = delete;
    Device_reads& operator=(Device_reads const&) = delete;

    /// Answers the request exactly once, at once or later; `file` is a device's.
    void read(fuse_req_t request, std::size_t space, Open_file& file, bool may_wait);

    /// Answers all that wait; nobody is told of changes any more.
    void finish();

 private:
    void device_changed(Input_device const& device);
    void complete_waiting(Open_file& file);
    void deliver(fuse_req_t request, Input_device const& device, Outcome const& outcome);
    void interrupted(fuse_req_t request);
    static void on_interrupt(fuse_req_t request, void* reads);

    Model& model_;
    Open_files& files_;
    Held_answers& held_;
    Control_loop& loop_;
};

}  // namespace bench::hypervisor

#endif
