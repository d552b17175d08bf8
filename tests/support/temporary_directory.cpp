#include "support/temporary_directory.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp is POSIX

namespace test_support {

Temporary_directory::Temporary_directory() {
    std::string name = std::filesystem::temp_directory_path() / "statemanager_test.XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory can be made");
    }
    path_ = name;
}

Temporary_directory::~Temporary_directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Temporary_directory::write(std::string const& name, std::string_view content) const {
    std::ofstream written(path_ / name, std::ios::binary);
    written.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!written.flush()) {
        throw std::runtime_error("a file of the test can't be written: " + file(name));
    }
    return file(name);
}

std::string Temporary_directory::read(std::string const& name) const {
    std::ifstream content(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(content), {}};
}

}  // namespace test_support
