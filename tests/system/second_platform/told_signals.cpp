// Stands in for the C library's `signal`: what it is asked for is a line on standard error.

#include <csignal>
#include <string>

#include <unistd.h>

extern "C" {

sighandler_t signal(int number, sighandler_t handler) {
    if (number != SIGPIPE) {
        auto const line = "signal " + std::to_string(number) + '\n';
        [[maybe_unused]] auto const nobody_reads = ::write(STDERR_FILENO, line.data(), line.size());
    }
    struct sigaction wanted {};
    wanted.sa_handler = handler;
    wanted.sa_flags = SA_RESTART;
    struct sigaction before {};
    return ::sigaction(number, &wanted, &before) == 0 ? before.sa_handler : SIG_ERR;
}
}
