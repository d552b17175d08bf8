#ifndef BENCH_VM_PORT_H
#define BENCH_VM_PORT_H

#include <string>

namespace bench::vm {

/// The host's end of one of the machine's lines: a Unix socket on which the emulator listens.
class Port {
 public:
    /// Connects as soon as the emulator listens. Throws `std::runtime_error` when it does not within some seconds.
    explicit Port(std::string const& path);
    ~Port();
    Port(Port const&) = delete;
    Port& operator=(Port const&) = delete;

    int descriptor() const { return descriptor_; }

    /// The bytes that have arrived, without waiting.
    std::string take();

    /// False once `take` has seen that the other end is gone.
    bool is_open() const { return is_open_; }

    /// Throws `std::runtime_error` when the other end is gone.
    void send(std::string const& bytes) const;

 private:
    int descriptor_;
    bool is_open_{true};
};

}  // namespace bench::vm

#endif
