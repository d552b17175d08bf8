#ifndef COMPONENT_CLIENT_EVENT_SOURCES_H
#define COMPONENT_CLIENT_EVENT_SOURCES_H

#include "base/descriptor.h"

#include <chrono>

namespace component_client {

// Descriptors that become readable. Constructors throw std::system_error when the system gives none.

/// Readable from a time on.
class Alarm {
 public:
    Alarm();
    int descriptor() const { return timer_.number(); }

    /// From now on plus the delay, which is above 0; an earlier setting is forgotten.
    void set(std::chrono::nanoseconds delay) const;

    /// True once after each setting whose time has come.
    bool take() const;

 private:
    base::Descriptor timer_;
};

/// One descriptor that is readable while any descriptor of a set is ready.
class Watch {
 public:
    Watch();
    int descriptor() const { return set_.number(); }

    void add(int watched) const;

    /// Whether being writable counts too.
    void want_write(int watched, bool wanted) const;

    /// Waits until one of them is ready.
    void wait() const;

 private:
    base::Descriptor set_;
};

}  // namespace component_client

#endif
