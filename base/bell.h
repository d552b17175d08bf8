#ifndef BASE_BELL_H
#define BASE_BELL_H

#include "base/descriptor.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace base {

/// A descriptor that is readable from a `ring`, by any thread, until it is cleared. Nothing here blocks.
class Bell {
 public:
    /// Throws std::system_error when the system gives no descriptor.
    Bell() : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (!event_.is_open()) {
            throw std::system_error(errno, std::generic_category(), "eventfd");
        }
    }

    int descriptor() const { return event_.number(); }

    /// False when the system refuses it.
    bool ring() const {
        std::uint64_t const one = 1;
        bool const is_rung = ::write(event_.number(), &one, sizeof one) == sizeof one;
        return is_rung || errno == EAGAIN;  // so many rings that no more can be counted
    }

    void clear() const {
        std::uint64_t count = 0;
        [[maybe_unused]] auto const nothing_is_clear = ::read(event_.number(), &count, sizeof count);
    }

 private:
    Descriptor event_;
};

}  // namespace base

#endif
