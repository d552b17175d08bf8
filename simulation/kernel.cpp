// The system calls with which the daemon writes into control files. The linker gives it these instead of the C
// library's (--wrap in CMakeLists.txt), so that its own code runs down to the call.

#include "simulation/control_files.h"

#include <cstdarg>
#include <string_view>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

using simulation::Control_files;

extern "C" {

int real_open(char const* path, int flags, ...) __asm__("__real_open");
ssize_t real_write(int descriptor, void const* bytes, size_t count) __asm__("__real_write");
int real_close(int descriptor) __asm__("__real_close");

int played_open(char const* path, int flags, ...) __asm__("__wrap_open");
ssize_t played_write(int descriptor, void const* bytes, size_t count) __asm__("__wrap_write");
int played_close(int descriptor) __asm__("__wrap_close");

int played_open(char const* path, int flags, ...) {
    if (auto* const files = Control_files::current(); files != nullptr && files->has(path)) {
        return files->open(path);
    }
    if ((static_cast<unsigned>(flags) & (O_CREAT | O_TMPFILE)) == 0) {
        return real_open(path, flags);
    }
    va_list arguments;
    va_start(arguments, flags);
    auto const mode = va_arg(arguments, unsigned);
    va_end(arguments);
    return real_open(path, flags, mode);
}

ssize_t played_write(int descriptor, void const* bytes, size_t count) {
    if (auto* const files = Control_files::current(); files != nullptr && files->is_open(descriptor)) {
        return files->write(descriptor, {static_cast<char const*>(bytes), count});
    }
    return real_write(descriptor, bytes, count);
}

int played_close(int descriptor) {
    if (auto* const files = Control_files::current(); files != nullptr && files->is_open(descriptor)) {
        files->close(descriptor);
        return 0;
    }
    return real_close(descriptor);
}
}
