#ifndef UTILITIES_FILES_H
#define UTILITIES_FILES_H

#include <string>

#include <sys/types.h>

namespace utilities {

// Files and directories by name. A system call that fails throws std::system_error with the call as its text.

/// False for an empty path, and when nothing can be seen at the path for whatever reason.
bool file_exists(std::string const& path);

/// What stands before the last slash: "/a" for "/a/b", "/" for "/a", "" for "a".
std::string get_containing_directory(std::string const& path);

void make_dir(std::string const& path, mode_t mode);

/// Makes each directory of the path that is missing, parents first. Others may do so at the same time.
void make_dirs(std::string const& path, mode_t mode);

/// Removes a file or an empty directory, if it exists. Others may do so at the same time.
void delete_file(std::string const& path);

/// A new directory of this process's own below /tmp.
std::string create_tmp_dir();

/// The same directory for every call; it goes with its content when the process exits.
std::string const& get_static_tmp_dir();

/// Owns what is at a path, and removes it when destroyed; a failure is logged. What is not there needs no removing.
class Deleter {
 public:
    /// `is_directory_tree`: a directory with everything in it, otherwise a file.
    Deleter(std::string path, bool is_directory_tree);
    ~Deleter();
    Deleter(Deleter const&) = delete;
    Deleter& operator=(Deleter const&) = delete;

    std::string const& get_path() const { return path_; }

 private:
    std::string path_;
    bool is_directory_tree_;
};

}  // namespace utilities

#endif
