// Loaded before the C library it makes a machine whose name can't be read.

#include <cerrno>
#include <cstddef>

extern "C" int gethostname(char* /*name*/, std::size_t /*size*/) noexcept {
    errno = EPERM;
    return -1;
}
