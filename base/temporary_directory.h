#ifndef BASE_TEMPORARY_DIRECTORY_H
#define BASE_TEMPORARY_DIRECTORY_H

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace base {

/// An empty directory; it goes with the object and all that is in it.
class Temporary_directory {
 public:
    /// Below the system's directory for temporary files or another one. Throws `std::system_error`.
    explicit Temporary_directory(std::filesystem::path const& parent = std::filesystem::temp_directory_path()) {
        std::string name = parent / "statemanager-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), name);
        }
        path_ = name;
    }
    ~Temporary_directory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Temporary_directory(Temporary_directory const&) = delete;
    Temporary_directory& operator=(Temporary_directory const&) = delete;

    std::filesystem::path const& path() const { return path_; }

    /// Full name of a file in it; nothing is made.
    std::string file(std::string const& name) const { return path_ / name; }

 private:
    std::filesystem::path path_;
};

}  // namespace base

#endif
