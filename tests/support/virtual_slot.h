#ifndef TESTS_SUPPORT_VIRTUAL_SLOT_H
#define TESTS_SUPPORT_VIRTUAL_SLOT_H

#include <cstddef>
#include <cstring>

#include <gtest/gtest.h>

namespace test_support {

/// Where an operation stands in the virtual table, 1 being the first after the destructor, which takes two entries. A
/// pointer to a virtual member holds the entry's distance in bytes; some ABIs add 1 to it as a mark.
template <class Operation>
std::size_t virtual_slot(Operation operation) {
    std::size_t distance = 0;
    static_assert(sizeof operation >= sizeof distance);
    std::memcpy(&distance, &operation, sizeof distance);
    return (distance & ~std::size_t{1}) / sizeof(void*) - 1;
}

/// Expects that operations stand one after the other in the virtual table.
template <class... Operations>
void expect_slots_from(std::size_t first, Operations... operations) {
    for (std::size_t const slot : {virtual_slot(operations)...}) {
        EXPECT_EQ(slot, first++);
    }
}

}  // namespace test_support

#endif
