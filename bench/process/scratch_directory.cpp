#include "bench/process/scratch_directory.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace bench {

Scratch_directory::Scratch_directory() {
    std::string name = std::filesystem::temp_directory_path() / "bench-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    path_ = name;
}

Scratch_directory::~Scratch_directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace bench
