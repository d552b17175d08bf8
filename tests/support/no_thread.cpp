// Loaded before the C library it makes a machine that has no room for another thread: the one whose number stands in
// NO_THREAD (1 is the first that the process starts) can't be started; nor can those that follow it, as many in all as
// an x and a number behind it say ("4x2"), or each of them when a + follows it.

#include <atomic>
#include <cerrno>
#include <cstdlib>

#include <dlfcn.h>
#include <pthread.h>

namespace {

long refused(char const* rest) {
    return *rest == 'x' ? std::strtol(rest + 1, nullptr, 10) : 1;
}

}  // namespace

extern "C" int pthread_create(pthread_t* thread, pthread_attr_t const* attributes, void* (*start)(void*),
                              void* argument) noexcept {
    static std::atomic<long> started{0};
    auto const* const wanted = std::getenv("NO_THREAD");
    char* rest = nullptr;
    auto const number = wanted != nullptr ? std::strtol(wanted, &rest, 10) : 0;
    auto const mine = ++started;
    if (number != 0 && mine >= number && (*rest == '+' || mine < number + refused(rest))) {
        return EAGAIN;
    }
    using Create = int (*)(pthread_t*, pthread_attr_t const*, void* (*)(void*), void*);
    static auto const real = reinterpret_cast<Create>(::dlsym(RTLD_NEXT, "pthread_create"));
    return real(thread, attributes, start, argument);
}
