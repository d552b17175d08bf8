#ifndef BENCH_HYPERVISOR_FUSE_SERVER_H
#define BENCH_HYPERVISOR_FUSE_SERVER_H

#include "bench/hypervisor/model.h"
#include "bench/json_lines/control_loop.h"

#include <memory>
#include <string>

namespace bench::hypervisor {

/// Mounts the model's files and serves them in the loop, from construction to destruction.
class Fuse_server {
 public:
    /// Mounts on an existing directory: directly where the caller may open /dev/fuse and mount (root, or root of its
    /// own user namespace), else by fusermount3. Throws `std::runtime_error` that says what is missing.
    /// Model and loop must outlive the server.
    Fuse_server(Model& model, Control_loop& loop, std::string const& directory);

    /// Answers what still waits and unmounts; must be done before the loop is destroyed, after it has run.
    ~Fuse_server();
    Fuse_server(Fuse_server const&) = delete;
    Fuse_server& operator=(Fuse_server const&) = delete;

 private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace bench::hypervisor

#endif
