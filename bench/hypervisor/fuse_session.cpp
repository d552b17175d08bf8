#include "bench/hypervisor/fuse_session.h"

#include "bench/hypervisor/fuse_requirements.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <vector>

#include <unistd.h>

namespace bench::hypervisor {

namespace {

File_server& server_of(fuse_req_t request) {
    return *static_cast<File_server*>(fuse_req_userdata(request));
}

// libfuse's names on the left, the server's on the right.
fuse_lowlevel_ops make_operations() {
    fuse_lowlevel_ops table{};
    table.lookup = [](fuse_req_t request, fuse_ino_t directory, char const* name) {
        server_of(request).look_up(request, directory, name);
    };
    table.getattr = [](fuse_req_t request, fuse_ino_t inode, fuse_file_info*) {
        server_of(request).get_attributes(request, inode);
    };
    table.setattr = [](fuse_req_t request, fuse_ino_t inode, struct stat*, int, fuse_file_info*) {
        server_of(request).set_attributes(request, inode);
    };
    table.mknod = [](fuse_req_t request, fuse_ino_t, char const*, mode_t, dev_t) { fuse_reply_err(request, EACCES); };
    table.readdir = [](fuse_req_t request, fuse_ino_t directory, size_t space, off_t position, fuse_file_info*) {
        server_of(request).list(request, directory, space, position);
    };
    table.open = [](fuse_req_t request, fuse_ino_t inode, fuse_file_info* info) {
        server_of(request).open(request, inode, *info);
    };
    table.read = [](fuse_req_t request, fuse_ino_t, size_t space, off_t, fuse_file_info* info) {
        server_of(request).read(request, space, *info);
    };
    table.write = [](fuse_req_t request, fuse_ino_t, char const* bytes, size_t size, off_t offset,
                     fuse_file_info* info) {
        server_of(request).write(request, {bytes, size}, offset, *info);
    };
    table.ioctl = [](fuse_req_t request, fuse_ino_t, unsigned command, void*, fuse_file_info* info, unsigned,
                     void const*, size_t, size_t space) { server_of(request).control(request, command, space, *info); };
    table.poll = [](fuse_req_t request, fuse_ino_t, fuse_file_info* info, fuse_pollhandle* handle) {
        server_of(request).poll(request, *info, handle);
    };
    table.release = [](fuse_req_t request, fuse_ino_t, fuse_file_info* info) {
        server_of(request).release(request, *info);
    };
    return table;
}

Fuse_session try_mount(File_server& server, std::string const& directory, std::string const& options) {
    std::vector<std::string> words{"bench_hypervisor", "-o", options};
    std::vector<char*> pointers;
    pointers.reserve(words.size());
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    fuse_args arguments = FUSE_ARGS_INIT(static_cast<int>(pointers.size()), pointers.data());
    fuse_lowlevel_ops const operations = make_operations();
    Fuse_session session(fuse_session_new(&arguments, &operations, sizeof operations, &server));
    fuse_opt_free_args(&arguments);
    if (session && fuse_session_mount(session.get(), directory.c_str()) != 0) {
        session.reset();
    }
    return session;
}

std::string cause_of_failure(std::string const& directory) {
    std::string const prefix = "cannot mount on " + directory + ": ";
    if (::access(directory.c_str(), X_OK) != 0) {
        return prefix + std::strerror(errno);
    }
    std::string const missing = missing_for_fuse();
    return prefix + (missing.empty() ? "mounting is not allowed here (needs root or a user namespace)" : missing);
}

}  // namespace

Fuse_session mount_session(File_server& server, std::string const& directory) {
    std::string const name = "fsname=bench_hypervisor,subtype=bench";
    // Root lets the other users of its machine in; the daemon under test may run as one of them.
    Fuse_session session = try_mount(server, directory, ::geteuid() == 0 ? name + ",allow_other" : name);
    if (!session && ::access(directory.c_str(), X_OK) == 0) {
        // With this option libfuse leaves the mounting to fusermount3.
        session = try_mount(server, directory, name + ",auto_unmount");
    }
    if (!session) {
        throw std::runtime_error(cause_of_failure(directory));
    }
    return session;
}

}  // namespace bench::hypervisor
