#ifndef BENCH_HYPERVISOR_FUSE_SESSION_H
#define BENCH_HYPERVISOR_FUSE_SESSION_H

#include "bench/hypervisor/file_server.h"
#include "bench/hypervisor/fuse_api.h"

#include <memory>
#include <string>

namespace bench::hypervisor {

struct Fuse_session_deleter {
    void operator()(fuse_session* session) const { fuse_session_destroy(session); }
};
using Fuse_session = std::unique_ptr<fuse_session, Fuse_session_deleter>;

/// A mounted session whose requests the server answers. Throws `std::runtime_error` that says what is missing.
Fuse_session mount_session(File_server& server, std::string const& directory);

}  // namespace bench::hypervisor

#endif
