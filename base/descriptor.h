#ifndef BASE_DESCRIPTOR_H
#define BASE_DESCRIPTOR_H

#include <unistd.h>

namespace base {

/// Owns a descriptor; a negative number, as a failed system call gives, is none. Nobody is told when closing fails.
class Descriptor {
 public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (is_open()) {
            ::close(number_);
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int number() const { return number_; }
    bool is_open() const { return number_ >= 0; }

 private:
    int const number_;
};

}  // namespace base

#endif
