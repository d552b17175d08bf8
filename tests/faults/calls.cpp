#include "calls.h"

#include "allocation.h"

#include <algorithm>
#include <cerrno>

#include <sys/syscall.h>

namespace faults {

namespace {

// Of what is there to be read or written.
std::vector<int> errors_of(Use use, Subject subject) {
    bool const reads = use == Use::reads;
    switch (subject) {
        case Subject::stream:
            return reads ? std::vector{ENOMEM, ECONNRESET} : std::vector{ENOMEM, ENOBUFS, EPIPE, ECONNRESET};
        case Subject::datagrams:
            return reads ? std::vector{ENOMEM, ECONNREFUSED} : std::vector{ENOMEM, ENOBUFS, ECONNREFUSED};
        case Subject::file:
            return reads ? std::vector{ENOMEM, EIO} : std::vector{EIO, ENOSPC};
        case Subject::pipe:
            return reads ? std::vector<int>{} : std::vector{EPIPE};
        default:
            return {};
    }
}

}  // namespace

std::vector<Call> const& calls() {
    static std::vector<int> const opening{EINTR, EMFILE, ENOMEM, EACCES, EIO};
    static std::vector<int> const path{EACCES, ENOMEM, EIO};
    static std::vector<int> const descriptor{EMFILE, ENOMEM};
    static std::vector<Call> const all{
        {SYS_read, "read", Use::reads, {EINTR}},
        {SYS_write, "write", Use::writes, {EINTR}},
        {SYS_readv, "readv", Use::reads, {EINTR}},
        {SYS_writev, "writev", Use::writes, {EINTR}},
        {SYS_recvfrom, "recvfrom", Use::reads, {EINTR}},
        {SYS_sendto, "sendto", Use::writes, {EINTR}},
        {SYS_recvmsg, "recvmsg", Use::reads, {EINTR}},
        {SYS_sendmsg, "sendmsg", Use::writes, {EINTR}},
        {SYS_accept, "accept", Use::connects, {EINTR, EMFILE, ENOMEM, ECONNABORTED}},
        {SYS_accept4, "accept4", Use::connects, {EINTR, EMFILE, ENOMEM, ECONNABORTED}},
        {SYS_connect, "connect", Use::connects, {EINTR, ECONNREFUSED, EACCES, ENOMEM}},
        {SYS_open, "open", Use::none, opening},
        {SYS_openat, "openat", Use::none, opening},
        {SYS_close, "close", Use::none, {EINTR, EIO}},
        {SYS_socket, "socket", Use::none, descriptor},
        {SYS_socketpair, "socketpair", Use::none, descriptor},
        {SYS_epoll_create1, "epoll_create1", Use::none, descriptor},
        {SYS_eventfd2, "eventfd2", Use::none, descriptor},
        {SYS_timerfd_create, "timerfd_create", Use::none, descriptor},
        {SYS_inotify_init1, "inotify_init1", Use::none, descriptor},
        {SYS_pidfd_open, "pidfd_open", Use::none, descriptor},
        {SYS_pipe2, "pipe2", Use::none, descriptor},
        {SYS_bind, "bind", Use::none, {EADDRINUSE, EACCES, ENOMEM}},
        {SYS_listen, "listen", Use::none, {EADDRINUSE, EACCES, ENOMEM}},
        {SYS_setsockopt, "setsockopt", Use::none, {ENOMEM, ENOBUFS}},
        {SYS_poll, "poll", Use::none, {EINTR, ENOMEM}},
        {SYS_ppoll, "ppoll", Use::none, {EINTR, ENOMEM}},
        {SYS_select, "select", Use::none, {EINTR, ENOMEM}},
        {SYS_pselect6, "pselect6", Use::none, {EINTR, ENOMEM}},
        {SYS_epoll_ctl, "epoll_ctl", Use::none, {ENOMEM, ENOSPC}},
        {SYS_epoll_wait, "epoll_wait", Use::none, {EINTR}},
        {SYS_epoll_pwait, "epoll_pwait", Use::none, {EINTR}},
        {SYS_timerfd_settime, "timerfd_settime", Use::none, {ENOMEM}},
        {SYS_ioctl, "ioctl", Use::none, {EINTR, ENOMEM, EIO}},
        {SYS_fcntl, "fcntl", Use::none, {ENOMEM}},
        {SYS_newfstatat, "newfstatat", Use::none, path},
        {SYS_mkdir, "mkdir", Use::none, path},
        {SYS_unlink, "unlink", Use::none, path},
        {SYS_chmod, "chmod", Use::none, path},
        {SYS_readlink, "readlink", Use::none, path},
        {SYS_access, "access", Use::none, path},
        {SYS_getdents64, "getdents64", Use::none, {ENOMEM, EIO}},
        {SYS_mmap, "mmap", Use::none, {ENOMEM}},
        {SYS_mprotect, "mprotect", Use::none, {ENOMEM}},
        {SYS_clone3, "clone3", Use::none, {EAGAIN, ENOMEM}},
        {SYS_clone, "clone", Use::none, {EAGAIN, ENOMEM}},
        {SYS_clock_nanosleep, "clock_nanosleep", Use::none, {EINTR}},
        {SYS_getrandom, "getrandom", Use::none, {EINTR}},
        {k_allocation, "operator new", Use::none, {ENOMEM}},
    };
    return all;
}

Call const* call_of(long number) {
    auto const found =
        std::find_if(calls().begin(), calls().end(), [number](Call const& call) { return call.number == number; });
    return found == calls().end() ? nullptr : &*found;
}

std::vector<int> errors_of(Call const& call, Subject subject, bool is_nonblocking) {
    auto errors = call.errors;
    if (call.use == Use::reads || call.use == Use::writes) {
        auto const more = errors_of(call.use, subject);
        errors.insert(errors.end(), more.begin(), more.end());
    }
    if (is_nonblocking && call.use != Use::none) {
        errors.push_back(EAGAIN);
    }
    return errors;
}

}  // namespace faults
