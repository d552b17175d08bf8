#include "bench/hypervisor/fuse_server.h"

#include "bench/hypervisor/file_server.h"
#include "bench/hypervisor/fuse_session.h"

#include <cstdlib>

#include <fcntl.h>

namespace bench::hypervisor {

struct Fuse_server::Implementation {
    Implementation(Model& model, Control_loop& control_loop, std::string const& directory)
        : loop(control_loop), server(model, control_loop), session(mount_session(server, directory)) {}
    ~Implementation() {
        server.finish();
        fuse_session_unmount(session.get());
        std::free(buffer.mem);
    }
    Implementation(Implementation const&) = delete;
    Implementation& operator=(Implementation const&) = delete;

    void serve_requests();

    Control_loop& loop;
    File_server server;
    Fuse_session session;
    fuse_buf buffer{};  // libfuse allocates its memory at the first request
};

// A request may vanish between the wake-up and the read, so the descriptor must not block.
void Fuse_server::Implementation::serve_requests() {
    int const size = fuse_session_receive_buf(session.get(), &buffer);
    if (size == -EINTR || size == -EAGAIN) {
        return;
    }
    if (size > 0) {
        fuse_session_process_buf(session.get(), &buffer);
    }
    if (size <= 0 || fuse_session_exited(session.get()) != 0) {
        loop.event("unmounted", {{"by", "somebody else"}});
        loop.stop(EXIT_FAILURE);
    }
}

Fuse_server::Fuse_server(Model& model, Control_loop& loop, std::string const& directory)
    : implementation_(std::make_unique<Implementation>(model, loop, directory)) {
    int const descriptor = fuse_session_fd(implementation_->session.get());
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    loop.watch(descriptor, [self = implementation_.get()] { self->serve_requests(); });
}

Fuse_server::~Fuse_server() = default;

}  // namespace bench::hypervisor
