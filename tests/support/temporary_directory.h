#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <string>
#include <string_view>

namespace test_support {

/// A directory of the test's own, removed with everything in it when the test ends.
class Temporary_directory {
 public:
    Temporary_directory();
    ~Temporary_directory();
    Temporary_directory(Temporary_directory const&) = delete;
    Temporary_directory& operator=(Temporary_directory const&) = delete;

    /// The directory itself.
    std::string const& path() const { return directory_; }

    /// The path of a name in the directory; nothing is made.
    std::string path(std::string const& name) const;

    /// Writes a file and gives its path.
    std::string write(std::string const& name, std::string_view content) const;

 private:
    std::string directory_;
};

}  // namespace test_support

#endif
