#ifndef TESTS_SUPPORT_TEMPORARY_FILE_H
#define TESTS_SUPPORT_TEMPORARY_FILE_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <stdlib.h>

namespace test_support {

/// A directory of the test's own, gone with it.
class Temporary_directory {
 public:
    Temporary_directory() {
        std::string name = (std::filesystem::temp_directory_path() / "statemanager-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    ~Temporary_directory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Temporary_directory(Temporary_directory const&) = delete;
    Temporary_directory& operator=(Temporary_directory const&) = delete;

    std::filesystem::path const& path() const { return path_; }

    /// Full name of a file in it.
    std::string file(std::string const& name) const { return (path_ / name).string(); }

    std::string read(std::string const& name) const {
        std::ifstream in(path_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::string write(std::string const& name, std::string const& content) const {
        std::ofstream(path_ / name, std::ios::binary) << content;
        return file(name);
    }

 private:
    std::filesystem::path path_;
};

}  // namespace test_support

#endif
