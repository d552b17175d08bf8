#ifndef COMPONENT_CLIENT_DESCRIPTOR_H
#define COMPONENT_CLIENT_DESCRIPTOR_H

#include <unistd.h>

namespace component_client {

/// Owns a descriptor.
class Descriptor {
 public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { ::close(number_); }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int number() const { return number_; }

 private:
    int number_;
};

}  // namespace component_client

#endif
