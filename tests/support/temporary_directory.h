#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include "base/temporary_directory.h"

#include <string>
#include <string_view>

namespace test_support {

/// A directory of the test's own, with the files that it writes.
class Temporary_directory : public base::Temporary_directory {
 public:
    /// Writes a file and gives its full name.
    std::string write(std::string const& name, std::string_view content) const;

    /// All bytes of a file; empty when there is none.
    std::string read(std::string const& name) const;
};

}  // namespace test_support

#endif
