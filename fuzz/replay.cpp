// Runs a fuzz target with each file below a folder, once: `TARGET FOLDER`. The target aborts when it finds something;
// the last name that was printed is that of its input.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

/// In the order of their names, so that each run is the same.
std::set<std::string> files_below(char const* folder) {
    std::set<std::string> files;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.insert(entry.path().string());
        }
    }
    return files;
}

bool run(std::string const& path) {
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    std::ifstream file(path, std::ios::binary);
    std::string const input{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        return false;
    }
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(input.data()), input.size());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("Usage: TARGET FOLDER\n", stderr);
        return 2;
    }
    auto const files = files_below(argv[1]);
    for (auto const& path : files) {
        if (!run(path)) {
            std::fprintf(stderr, "%s can't be read\n", path.c_str());
            return 1;
        }
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}
