#pragma once
// For a copy of the product into which changes are woven: which of them is on, and which ones a run comes by.
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace mutants {

// MUTANT: the number of the change that is on; none without.
inline int const number = [] {
    char const* const told = ::getenv("MUTANT");
    return told == nullptr ? -1 : ::atoi(told);
}();

// MUTANTS_REACHED: a file with a byte for each change, which is set when a process comes by it.
inline unsigned char* const reached = []() -> unsigned char* {
    char const* const path = ::getenv("MUTANTS_REACHED");
    int const file = path == nullptr ? -1 : ::open(path, O_RDWR | O_CLOEXEC);
    if (file < 0) {
        return nullptr;
    }
    auto const size = static_cast<unsigned long>(::lseek(file, 0, SEEK_END));
    void* const bytes = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    return bytes == MAP_FAILED ? nullptr : static_cast<unsigned char*>(bytes);
}();

inline bool chosen(int mutant) noexcept {
    if (reached != nullptr) {
        reached[mutant] = 1;
    }
    return mutant == number;
}

// The same where the compiler needs a constant: there it is the original.
template <int mutant>
constexpr bool chosen_later() noexcept {
    return !__builtin_is_constant_evaluated() && chosen(mutant);
}

}  // namespace mutants
