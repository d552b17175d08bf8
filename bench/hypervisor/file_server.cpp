#include "bench/hypervisor/file_server.h"

#include "bench/hypervisor/journal.h"
#include "bench/json_lines/clock.h"

#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <poll.h>

namespace bench::hypervisor {

namespace {

using nlohmann::json;

// Devices come and go on command, so the kernel must ask each time.
constexpr double k_no_caching = 0.0;

}  // namespace

File_server::File_server(Model& model, Control_loop& loop)
    : loop_(loop), tree_(model), held_(loop), reads_(model, files_, held_, loop) {}

void File_server::look_up(fuse_req_t request, std::uint64_t directory, std::string const& name) {
    auto const node = tree_.find(directory, name);
    if (!node) {
        fuse_reply_err(request, ENOENT);
        return;
    }
    fuse_entry_param entry{};
    entry.ino = node->inode;
    entry.attr = node->attributes();
    entry.attr_timeout = entry.entry_timeout = k_no_caching;
    fuse_reply_entry(request, &entry);
}

void File_server::get_attributes(fuse_req_t request, std::uint64_t inode) {
    auto const node = tree_.find(inode);
    if (!node) {
        fuse_reply_err(request, ENOENT);
        return;
    }
    struct stat const attributes = node->attributes();
    fuse_reply_attr(request, &attributes, k_no_caching);
}

// Truncation and the like change nothing: these files have no content.
void File_server::set_attributes(fuse_req_t request, std::uint64_t inode) {
    get_attributes(request, inode);
}

void File_server::list(fuse_req_t request, std::uint64_t directory, std::size_t space, off_t position) {
    auto const entries = tree_.entries(directory);
    std::vector<char> buffer(space);
    std::size_t used = 0;
    for (auto index = static_cast<std::size_t>(position); index < entries.size(); ++index) {
        struct stat const attributes = entries[index].attributes();
        std::size_t const size =
            fuse_add_direntry(request, buffer.data() + used, space - used, entries[index].name.c_str(), &attributes,
                              static_cast<off_t>(index) + 1);
        if (size > space - used) {
            break;
        }
        used += size;
    }
    fuse_reply_buf(request, buffer.data(), used);
}

void File_server::open(fuse_req_t request, std::uint64_t inode, fuse_file_info const& info) {
    auto const node = tree_.find(inode);
    if (!node || node->is_directory()) {
        fuse_reply_err(request, node ? EISDIR : ENOENT);
        return;
    }
    Fault fault = (node->device ? node->device->faults() : node->control_file->faults()).take(Operation::open);
    if (node->device && node->device->hung_up()) {
        fault.error = ENODEV;
    }
    json const details{{"file", node->name}, {"pid", fuse_req_ctx(request)->pid}, {"flags", info.flags}};
    loop_.event("open", with_error(details, fault.error));
    held_.give_after(fault.delay, [this, request, node = *node, info, error = fault.error] {
        if (error != 0) {
            fuse_reply_err(request, error);
            return;
        }
        fuse_file_info opened = info;
        opened.fh = files_.add(node.device, node.control_file).handle;
        opened.direct_io = 1;    // each read and write of the program becomes one request
        opened.nonseekable = 1;  // as a character device
        if (fuse_reply_open(request, &opened) == -ENOENT) {
            files_.remove(opened.fh);  // the program was interrupted: there will be no release
        }
    });
}

void File_server::release(fuse_req_t request, fuse_file_info const& info) {
    Open_file const& file = files_.at(info.fh);
    json const details{{"file", file.device ? file.device->name() : file.control_file->name()}};
    files_.remove(info.fh);
    fuse_reply_err(request, 0);
    loop_.event("close", details);
}

void File_server::read(fuse_req_t request, std::size_t space, fuse_file_info const& info) {
    Open_file& file = files_.at(info.fh);
    if (file.device) {
        reads_.read(request, space, file, (info.flags & O_NONBLOCK) == 0);
    } else {
        fuse_reply_err(request, EIO);  // control files are for writing
    }
}

void File_server::write(fuse_req_t request, std::string_view bytes, off_t offset, fuse_file_info const& info) {
    std::int64_t const arrival = monotonic_ns();
    Open_file const& file = files_.at(info.fh);
    if (!file.control_file) {
        fuse_reply_err(request, EINVAL);
        return;
    }
    Request const& recorded = file.control_file->write(bytes, offset, arrival);
    held_.give_after(recorded.delay, [request, error = recorded.error, accepted = recorded.accepted] {
        if (error != 0) {
            fuse_reply_err(request, error);
        } else {
            fuse_reply_write(request, accepted);
        }
    });
    loop_.event("write", describe(file.control_file->name(), recorded));
}

void File_server::control(fuse_req_t request, unsigned command, std::size_t space, fuse_file_info const& info) {
    Open_file const& file = files_.at(info.fh);
    Outcome const outcome = file.device ? file.device->control(command, space) : Outcome{ENOTTY, {}, {}};
    held_.give_after(outcome.delay, [request, outcome] {
        if (outcome.error != 0) {
            fuse_reply_err(request, outcome.error);
            return;
        }
        fuse_reply_ioctl(request, static_cast<int>(outcome.bytes.size()), outcome.bytes.data(), outcome.bytes.size());
    });
    auto const& name = file.device ? file.device->name() : file.control_file->name();
    loop_.event("ioctl", with_error({{"file", name}, {"request", command}}, outcome.error));
}

void File_server::poll(fuse_req_t request, fuse_file_info const& info, fuse_pollhandle* handle) {
    Open_file& file = files_.at(info.fh);
    if (handle != nullptr) {
        file.poll_handle.reset(handle);
    }
    fuse_reply_poll(request, file.device ? file.device->poll(file.handle) : unsigned{POLLOUT | POLLWRNORM});
}

void File_server::finish() {
    held_.give_all_now();
    reads_.finish();
}

}  // namespace bench::hypervisor
