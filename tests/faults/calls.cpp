#include "calls.h"

#include "allocation.h"

#include <algorithm>
#include <cerrno>

#include <sys/syscall.h>

namespace faults {

namespace {

// clang-format off
constexpr Error k_eintr{EINTR, "EINTR"}, k_eagain{EAGAIN, "EAGAIN"}, k_enomem{ENOMEM, "ENOMEM"}, k_emfile{EMFILE, "EMFILE"},
    k_enobufs{ENOBUFS, "ENOBUFS"}, k_eio{EIO, "EIO"}, k_eacces{EACCES, "EACCES"}, k_epipe{EPIPE, "EPIPE"},
    k_econnreset{ECONNRESET, "ECONNRESET"}, k_econnrefused{ECONNREFUSED, "ECONNREFUSED"},
    k_econnaborted{ECONNABORTED, "ECONNABORTED"}, k_enospc{ENOSPC, "ENOSPC"}, k_eaddrinuse{EADDRINUSE, "EADDRINUSE"};
// clang-format on

std::vector<Error> errors_of_reading(Subject subject) {
    switch (subject) {
        case Subject::stream:
            return {k_eintr, k_enomem, k_econnreset};
        case Subject::datagrams:
            return {k_eintr, k_enomem, k_econnrefused};
        case Subject::file:
            return {k_eintr, k_enomem, k_eio};
        default:
            return {k_eintr};
    }
}

std::vector<Error> errors_of_writing(Subject subject) {
    switch (subject) {
        case Subject::stream:
            return {k_eintr, k_enomem, k_enobufs, k_epipe, k_econnreset};
        case Subject::datagrams:
            return {k_eintr, k_enomem, k_enobufs, k_econnrefused};
        case Subject::pipe:
            return {k_eintr, k_epipe};
        case Subject::file:
            return {k_eintr, k_eio, k_enospc};
        default:
            return {k_eintr};
    }
}

bool is_one_of(long number, std::vector<long> const& numbers) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

}  // namespace

std::vector<Call> const& calls() {
    static std::vector<Call> const all{
        {SYS_read, "read", true, false, 2},
        {SYS_write, "write", true, false, 2},
        {SYS_readv, "readv", true, false, 2},
        {SYS_writev, "writev", true, false, 2},
        {SYS_recvfrom, "recvfrom", true, false, 2},
        {SYS_sendto, "sendto", true, false, 2},
        {SYS_recvmsg, "recvmsg", true, false, -1},
        {SYS_sendmsg, "sendmsg", true, false, -1},
        {SYS_open, "open", false, false, -1},
        {SYS_openat, "openat", false, false, -1},
        {SYS_close, "close", true, true, -1},
        {SYS_socket, "socket", false, false, -1},
        {SYS_socketpair, "socketpair", false, false, -1},
        {SYS_bind, "bind", true, false, -1},
        {SYS_listen, "listen", true, false, -1},
        {SYS_accept, "accept", true, false, -1},
        {SYS_accept4, "accept4", true, false, -1},
        {SYS_connect, "connect", true, false, -1},
        {SYS_setsockopt, "setsockopt", true, false, -1},
        {SYS_poll, "poll", false, false, -1},
        {SYS_ppoll, "ppoll", false, false, -1},
        {SYS_select, "select", false, false, -1},
        {SYS_pselect6, "pselect6", false, false, -1},
        {SYS_epoll_create1, "epoll_create1", false, false, -1},
        {SYS_epoll_ctl, "epoll_ctl", true, false, -1},
        {SYS_epoll_wait, "epoll_wait", true, false, -1},
        {SYS_epoll_pwait, "epoll_pwait", true, false, -1},
        {SYS_eventfd2, "eventfd2", false, false, -1},
        {SYS_timerfd_create, "timerfd_create", false, false, -1},
        {SYS_timerfd_settime, "timerfd_settime", true, false, -1},
        {SYS_inotify_init1, "inotify_init1", false, false, -1},
        {SYS_pidfd_open, "pidfd_open", false, false, -1},
        {SYS_pipe2, "pipe2", false, false, -1},
        {SYS_ioctl, "ioctl", true, false, -1},
        {SYS_fcntl, "fcntl", true, false, -1},
        {SYS_newfstatat, "newfstatat", false, false, -1},
        {SYS_mkdir, "mkdir", false, false, -1},
        {SYS_unlink, "unlink", false, false, -1},
        {SYS_chmod, "chmod", false, false, -1},
        {SYS_getdents64, "getdents64", true, false, -1},
        {SYS_readlink, "readlink", false, false, -1},
        {SYS_access, "access", false, false, -1},
        {SYS_mmap, "mmap", false, false, -1},
        {SYS_mprotect, "mprotect", false, false, -1},
        {SYS_clone3, "clone3", false, false, -1},
        {SYS_clone, "clone", false, false, -1},
        {SYS_clock_nanosleep, "clock_nanosleep", false, false, -1},
        {SYS_getrandom, "getrandom", false, false, -1},
        {k_allocation, "operator new", false, false, -1},
    };
    return all;
}

Call const* call_of(long number) {
    auto const found =
        std::find_if(calls().begin(), calls().end(), [number](Call const& call) { return call.number == number; });
    return found == calls().end() ? nullptr : &*found;
}

std::vector<Error> errors_of(Call const& call, Subject subject, bool is_nonblocking) {
    std::vector<Error> errors;
    auto const number = call.number;
    if (is_one_of(number, {SYS_read, SYS_readv, SYS_recvfrom, SYS_recvmsg})) {
        errors = errors_of_reading(subject);
    } else if (is_one_of(number, {SYS_write, SYS_writev, SYS_sendto, SYS_sendmsg})) {
        errors = errors_of_writing(subject);
    } else if (is_one_of(number, {SYS_open, SYS_openat})) {
        errors = {k_eintr, k_emfile, k_enomem, k_eacces, k_eio};
    } else if (number == SYS_close) {
        errors = {k_eintr, k_eio};
    } else if (is_one_of(number, {SYS_socket, SYS_socketpair, SYS_epoll_create1, SYS_eventfd2, SYS_timerfd_create,
                                  SYS_inotify_init1, SYS_pidfd_open, SYS_pipe2})) {
        errors = {k_emfile, k_enomem};
    } else if (is_one_of(number, {SYS_bind, SYS_listen})) {
        errors = {k_eaddrinuse, k_eacces, k_enomem};
    } else if (is_one_of(number, {SYS_accept, SYS_accept4})) {
        errors = {k_eintr, k_emfile, k_enomem, k_econnaborted};
    } else if (number == SYS_connect) {
        errors = {k_eintr, k_econnrefused, k_eacces, k_enomem};
    } else if (number == SYS_setsockopt) {
        return {k_enomem, k_enobufs};
    } else if (number == SYS_epoll_ctl) {
        return {k_enomem, k_enospc};
    } else if (is_one_of(number, {SYS_poll, SYS_ppoll, SYS_select, SYS_pselect6})) {
        return {k_eintr, k_enomem};
    } else if (is_one_of(number, {SYS_epoll_wait, SYS_epoll_pwait, SYS_clock_nanosleep, SYS_getrandom})) {
        return {k_eintr};
    } else if (number == SYS_ioctl) {
        return {k_eintr, k_enomem, k_eio};
    } else if (is_one_of(number, {SYS_fcntl, SYS_timerfd_settime, SYS_mmap, SYS_mprotect, k_allocation})) {
        return {k_enomem};
    } else if (is_one_of(number, {SYS_newfstatat, SYS_mkdir, SYS_unlink, SYS_chmod, SYS_readlink, SYS_access})) {
        return {k_eacces, k_enomem, k_eio};
    } else if (number == SYS_getdents64) {
        return {k_enomem, k_eio};
    } else if (is_one_of(number, {SYS_clone, SYS_clone3})) {
        return {k_eagain, k_enomem};
    }
    if (is_nonblocking && call.has_descriptor && number != SYS_close && number != SYS_bind && number != SYS_listen) {
        errors.push_back(k_eagain);
    }
    return errors;
}

std::string name_of_error(int number) {
    for (auto const& error : {k_eintr, k_eagain, k_enomem, k_emfile, k_enobufs, k_eio, k_eacces, k_epipe, k_econnreset,
                              k_econnrefused, k_econnaborted, k_enospc, k_eaddrinuse}) {
        if (error.number == number) {
            return error.name;
        }
    }
    return std::to_string(number);
}

}  // namespace faults
