#ifndef TESTS_FAULTS_ALLOCATION_H
#define TESTS_FAULTS_ALLOCATION_H

namespace faults {

/// The number of the call that stands for `operator new`; the kernel has none of this number.
inline constexpr long k_allocation = 10'000;

}  // namespace faults

#endif
