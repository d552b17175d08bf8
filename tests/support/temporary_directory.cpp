#include "support/temporary_directory.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp is POSIX

namespace test_support {

Temporary_directory::Temporary_directory()
    : directory_((std::filesystem::temp_directory_path() / "statemanager_test.XXXXXX").string()) {
    if (::mkdtemp(directory_.data()) == nullptr) {
        throw std::runtime_error("no temporary directory can be made");
    }
}

Temporary_directory::~Temporary_directory() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

std::string Temporary_directory::path(std::string const& name) const {
    return directory_ + "/" + name;
}

std::string Temporary_directory::write(std::string const& name, std::string_view content) const {
    std::ofstream file(path(name), std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) {
        throw std::runtime_error("a file of the test can't be written: " + path(name));
    }
    return path(name);
}

}  // namespace test_support
