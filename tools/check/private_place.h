#ifndef TOOLS_CHECK_PRIVATE_PLACE_H
#define TOOLS_CHECK_PRIVATE_PLACE_H

#include <filesystem>
#include <string>

namespace statectl::check {

// A client that knows nothing of the environment variable connects to the machine's own socket. So it gets a view of
// the file system of its own, in which the directory of that socket is a private one. This takes the right to mount or
// to make user namespaces; the machine itself stays as it is.

/// Moves the calling process, which must have one thread, into such a view. Throws std::runtime_error.
void enter_private_place(std::filesystem::path const& directory);

/// Why that is not possible here; empty when it is.
std::string why_no_private_place(std::filesystem::path const& directory);

}  // namespace statectl::check

#endif
