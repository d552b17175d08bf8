#ifndef BENCHMARKS_MACHINE_PRIVATE_MACHINE_H
#define BENCHMARKS_MACHINE_PRIVATE_MACHINE_H

#include <string>

namespace benchmarks {

/// Moves this process and its later children into namespaces in which /etc/adaptive, /dev/input, /run and the network
/// are private; the host stays as it is. As root, or as an ordinary user where user namespaces are allowed. Must be
/// called before the first thread. `scratch` is an empty directory for the private files' content.
/// Throws `std::system_error` that names what was refused.
void enter_private_machine(std::string const& scratch);

/// Makes the directory appear at another place, which must exist. Throws `std::system_error`.
void bind_directory(std::string const& from, std::string const& to);

}  // namespace benchmarks

#endif
