#include "support/no_memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local int given = -1;  // so many more, then it fails; negative: no lack
thread_local bool fails_for_good = false;
thread_local bool was_refused = false;

bool is_refused() {
    if (given < 0 || given-- > 0) {
        return false;
    }
    given = fails_for_good ? 0 : -1;
    was_refused = true;
    return true;
}

void* allocate(std::size_t size) noexcept {
    return is_refused() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

}  // namespace

namespace test_support {

No_memory::No_memory() {
    given = 0;
    fails_for_good = true;
    was_refused = false;
}

No_memory::No_memory(int given_before) {
    given = given_before;
    fails_for_good = false;
    was_refused = false;
}

No_memory::~No_memory() {
    given = -1;
}

bool No_memory::was_met() const {  // NOLINT(readability-convert-member-functions-to-static): of the one that lives
    return was_refused;
}

}  // namespace test_support

// All of a kind, so that a sanitizer sees what is given back as it was taken.
void* operator new(std::size_t size) {
    void* const memory = allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, std::nothrow_t const& /*tag*/) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, std::nothrow_t const& /*tag*/) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::nothrow_t const& /*tag*/) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::nothrow_t const& /*tag*/) noexcept {
    std::free(memory);
}
