#ifndef BENCH_PROCESS_SCRATCH_DIRECTORY_H
#define BENCH_PROCESS_SCRATCH_DIRECTORY_H

#include <filesystem>
#include <string>

namespace bench {

/// An empty directory below the system's one for temporary files; it goes with the object and all that is in it.
class Scratch_directory {
 public:
    /// Throws `std::system_error`.
    Scratch_directory();
    ~Scratch_directory();
    Scratch_directory(Scratch_directory const&) = delete;
    Scratch_directory& operator=(Scratch_directory const&) = delete;

    std::filesystem::path const& path() const { return path_; }
    std::string file(std::string const& name) const { return path_ / name; }

 private:
    std::filesystem::path path_;
};

}  // namespace bench

#endif
