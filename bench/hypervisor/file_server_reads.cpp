// The part of File_server that reads devices: a read waits until the device has something, or its program is
// interrupted.

#include "bench/hypervisor/file_server.h"
#include "bench/hypervisor/journal.h"

#include <cerrno>
#include <chrono>
#include <utility>

#include <fcntl.h>

namespace bench::hypervisor {

void File_server::read(fuse_req_t request, std::size_t space, fuse_file_info const& info) {
    Open_file& file = files_.at(info.fh);
    if (!file.device) {
        fuse_reply_err(request, EIO);  // control files are for writing
        return;
    }
    Outcome outcome = file.device->read(file.handle, space);
    if (outcome.error == EAGAIN && (info.flags & O_NONBLOCK) == 0) {
        file.waiting_reads.push_back({request, space});
        fuse_req_interrupt_func(request, &File_server::on_interrupt, this);
        return;
    }
    deliver_read(request, *file.device, outcome);
}

void File_server::deliver_read(fuse_req_t request, Input_device const& device, Outcome const& outcome) {
    held_.give_after(outcome.delay, [this, request, name = device.name(), outcome] {
        if (outcome.error != 0) {
            fuse_reply_err(request, outcome.error);
        } else {
            fuse_reply_buf(request, outcome.bytes.data(), outcome.bytes.size());
        }
        if (outcome.error != EAGAIN) {
            loop_.event("read", with_error({{"file", name}, {"bytes", outcome.bytes.size()}}, outcome.error));
        }
    });
}

void File_server::device_changed(Input_device const& device) {
    for (auto& [handle, file] : files_.all()) {
        if (file.device.get() != &device) {
            continue;
        }
        complete_waiting_reads(file);
        if (auto const poll_handle = std::move(file.poll_handle)) {
            fuse_lowlevel_notify_poll(poll_handle.get());
        }
    }
}

void File_server::complete_waiting_reads(Open_file& file) {
    while (!file.waiting_reads.empty()) {
        auto const waiting = file.waiting_reads.front();
        Outcome const outcome = file.device->read(file.handle, waiting.space);
        if (outcome.error == EAGAIN) {
            return;
        }
        file.waiting_reads.pop_front();
        deliver_read(waiting.request, *file.device, outcome);
    }
}

// libfuse calls this with the request's lock held, so the answer is given in the next turn of the loop.
void File_server::on_interrupt(fuse_req_t request, void* server) {
    auto* const self = static_cast<File_server*>(server);
    self->loop_.after(std::chrono::milliseconds(0), [self, request] { self->interrupted(request); });
}

void File_server::interrupted(fuse_req_t request) {
    for (auto& [handle, file] : files_.all()) {
        auto const size_before = file.waiting_reads.size();
        file.waiting_reads.remove_if([&](auto const& waiting) { return waiting.request == request; });
        if (file.waiting_reads.size() != size_before) {
            fuse_reply_err(request, EINTR);
            return;
        }
    }
}

}  // namespace bench::hypervisor
