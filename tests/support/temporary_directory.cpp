#include "support/temporary_directory.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test_support {

std::string Temporary_directory::write(std::string const& name, std::string_view content) const {
    std::ofstream written(path() / name, std::ios::binary);
    written.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!written.flush()) {
        throw std::runtime_error("a file of the test can't be written: " + file(name));
    }
    return file(name);
}

std::string Temporary_directory::read(std::string const& name) const {
    std::ifstream content(path() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(content), {}};
}

}  // namespace test_support
