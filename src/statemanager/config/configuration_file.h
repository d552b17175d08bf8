#ifndef STATEMANAGER_CONFIG_CONFIGURATION_FILE_H
#define STATEMANAGER_CONFIG_CONFIGURATION_FILE_H

#include "base/descriptor.h"

#include <cstddef>
#include <string>

namespace ximo::ap::statemanager::config {

/// The configuration file, opened for reading. Opening never waits, whatever lies at the path.
class Configuration_file {
 public:
    /// Bytes of the largest file that is read: room for some 15,000 application instances with long names, and a bound
    /// for the memory that a damaged file can take.
    static constexpr std::size_t k_largest = 1048576;

    /// Opens the file; `is_open()` tells whether it could be.
    explicit Configuration_file(std::string const& path);

    bool is_open() const { return file_.is_open(); }

    /// The whole content, once. Throws `std::runtime_error` for anything but a regular file, for a file that is too
    /// large, and when reading fails.
    std::string read() const;

 private:
    base::Descriptor file_;
};

}  // namespace ximo::ap::statemanager::config

#endif
