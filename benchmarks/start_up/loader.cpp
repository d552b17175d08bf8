// Loads the daemon's shared libraries and writes the first state word; does nothing else. The yardstick of the daemon's
// start. Usage: benchmark_loader STATUS_FILE

#include <cstring>

#include <fcntl.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    int const status = ::open(argv[1], O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (status < 0 || ::write(status, "startingup", std::strlen("startingup")) < 0) {
        return 1;
    }
    ::pause();
    return 0;
}
