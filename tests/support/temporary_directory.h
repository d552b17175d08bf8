#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <filesystem>
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

    std::filesystem::path const& path() const { return path_; }

    /// Full name of a file in it; nothing is made.
    std::string file(std::string const& name) const { return path_ / name; }

    /// Writes a file and gives its full name.
    std::string write(std::string const& name, std::string_view content) const;

    /// All bytes of a file; empty when there is none.
    std::string read(std::string const& name) const;

 private:
    std::filesystem::path path_;
};

}  // namespace test_support

#endif
