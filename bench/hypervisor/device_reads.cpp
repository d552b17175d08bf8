#include "bench/hypervisor/device_reads.h"

#include "bench/hypervisor/journal.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace bench::hypervisor {

Device_reads::Device_reads(Model& model, Open_files& files, Held_answers& held, Control_loop& loop)
    : model_(model), files_(files), held_(held), loop_(loop) {
    model_.on_change([this](Input_device& device) { device_changed(device); });
}

Device_reads::~Device_reads() {
    model_.on_change({});
}

void Device_reads::read(fuse_req_t request, std::size_t space, Open_file& file, bool may_wait) {
    Outcome const outcome = file.device->read(file.handle, space);
    if (outcome.error == EAGAIN && may_wait) {
        file.waiting_reads.push_back({request, space});
        fuse_req_interrupt_func(request, &Device_reads::on_interrupt, this);
        return;
    }
    deliver(request, *file.device, outcome);
}

void Device_reads::deliver(fuse_req_t request, Input_device const& device, Outcome const& outcome) {
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

void Device_reads::device_changed(Input_device const& device) {
    for (auto& [handle, file] : files_.all()) {
        if (file.device.get() != &device) {
            continue;
        }
        complete_waiting(file);
        if (auto const poll_handle = std::move(file.poll_handle)) {
            fuse_lowlevel_notify_poll(poll_handle.get());
        }
    }
}

void Device_reads::complete_waiting(Open_file& file) {
    while (!file.waiting_reads.empty()) {
        auto const waiting = file.waiting_reads.front();
        Outcome const outcome = file.device->read(file.handle, waiting.space);
        if (outcome.error == EAGAIN) {
            return;
        }
        file.waiting_reads.pop_front();
        deliver(waiting.request, *file.device, outcome);
    }
}

// libfuse calls this with the request's lock held, so the answer is given in the next turn of the loop.
void Device_reads::on_interrupt(fuse_req_t request, void* reads) {
    auto* const self = static_cast<Device_reads*>(reads);
    self->loop_.after(std::chrono::milliseconds(0), [self, request] { self->interrupted(request); });
}

void Device_reads::interrupted(fuse_req_t request) {
    for (auto& [handle, file] : files_.all()) {
        auto const size_before = file.waiting_reads.size();
        file.waiting_reads.remove_if([&](auto const& waiting) { return waiting.request == request; });
        if (file.waiting_reads.size() != size_before) {
            fuse_reply_err(request, EINTR);
            return;
        }
    }
}

void Device_reads::finish() {
    for (auto& [handle, file] : files_.all()) {
        for (auto const& waiting : std::exchange(file.waiting_reads, {})) {
            fuse_reply_err(waiting.request, ENODEV);
        }
        file.poll_handle.reset();
    }
}

}  // namespace bench::hypervisor
