#include "utilities/files.h"

#include "utilities/logger.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>

namespace utilities {

namespace {

[[noreturn]] void throw_errno(std::string const& text) {
    throw std::system_error(errno, std::generic_category(), text);
}

// No failure when somebody else was faster.
void make_missing_dir(std::string const& path, mode_t mode) {
    try {
        make_dir(path, mode);
    } catch (std::system_error const& error) {
        std::error_code ignored;
        if (error.code().value() != EEXIST || !std::filesystem::is_directory(path, ignored)) {
            throw;
        }
    }
}

void delete_path(std::string const& path, bool is_directory_tree) {
    if (is_directory_tree) {
        std::filesystem::remove_all(path);
    } else {
        delete_file(path);
    }
}

}  // namespace

bool file_exists(std::string const& path) {
    struct stat status {};
    return !path.empty() && ::stat(path.c_str(), &status) == 0;
}

std::string get_containing_directory(std::string const& path) {
    return std::filesystem::path(path).parent_path();
}

void make_dir(std::string const& path, mode_t mode) {
    if (::mkdir(path.c_str(), mode) != 0) {
        throw_errno("mkdir('" + path + "')");
    }
}

void make_dirs(std::string const& path, mode_t mode) {
    std::filesystem::path reached;
    for (auto const& name : std::filesystem::path(path)) {
        reached /= name;
        if (!name.empty() && !file_exists(reached)) {
            make_missing_dir(reached, mode);
        }
    }
}

void delete_file(std::string const& path) {
    if (file_exists(path) && std::remove(path.c_str()) != 0 && errno != ENOENT) {
        throw_errno("remove('" + path + "')");
    }
}

std::string create_tmp_dir() {
    std::string path = "/tmp/state_notification_lib_test.XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) {
        throw_errno("mkdtemp('" + path + "')");
    }
    return path;
}

std::string const& get_static_tmp_dir() {
    static Deleter const directory(create_tmp_dir(), true);
    return directory.get_path();
}

Deleter::Deleter(std::string path, bool is_directory_tree)
    : path_(std::move(path)), is_directory_tree_(is_directory_tree) {}

Deleter::~Deleter() {
    try {
        delete_path(path_, is_directory_tree_);
    } catch (std::exception const& error) {
        get_logger().LogError() << "could not delete " << path_ << ": " << error.what();
    }
}

}  // namespace utilities
