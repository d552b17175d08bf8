#ifndef BENCH_VM_EMULATOR_H
#define BENCH_VM_EMULATOR_H

#include <iosfwd>
#include <string>
#include <vector>

namespace bench::vm {

/// What the emulator is started with.
struct Machine_options {
    std::string image;             ///< directory that holds `kernel`, `initrd` and the configurations
    unsigned processors{2};        ///< of the machine
    unsigned memory_mb{512};       ///< of the machine; the file system lies in it
    std::string kernel_options{};  ///< on top of the usual ones
    bool with_vehicle{false};      ///< the network is in use, and applications and clients are there
    std::string disk{};            ///< file with the machine's disk; with one, the recorder is there and writes on it

    /// A translated machine's time goes on with what it does, not with this machine's: what takes a second there does
    /// so on a busy host as well.
    bool counts_instructions{false};

    std::ostream* trace{nullptr};  ///< where the log's bytes are stored as they come, with serial headers
};

/// What the host can do for the machine.
struct Host {
    bool is_aarch64{false};
    bool has_kvm{false};  ///< this process may make virtual machines that the processor runs
};

Host this_host();

/// The emulator's program and arguments. Its sockets and files lie in `directory`:
///   log      the log daemon's serial line     state, restart   the VM-control ports
///   shell    the operator's hand              journal          what the service manager says
///   control  the emulator's own channel       console          the kernel's messages, a file
std::vector<std::string> command_line(Machine_options const& options, std::string const& directory, Host const& host);

}  // namespace bench::vm

#endif
