// In a browser nobody else reads the daemon's page, so nobody has to be woken.
#ifndef SIMULATION_WEB_SYSCALL_H
#define SIMULATION_WEB_SYSCALL_H

constexpr long SYS_futex = 0;

template <class... Arguments>
long syscall(long /*number*/, Arguments... /*arguments*/) {
    return 0;
}

#endif
