#include "bench/hypervisor/fault_plan.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace bench::hypervisor {
namespace {

Fault failing_with(int error) {
    Fault fault;
    fault.error = error;
    return fault;
}

TEST(Fault_plan_test, Without_a_plan_nothing_goes_wrong) {
    Fault_plan sut;
    EXPECT_FALSE(sut.has(Operation::write));
    Fault const fault = sut.take(Operation::write);
    EXPECT_EQ(fault.error, 0);
    EXPECT_EQ(fault.accepted_bytes, std::nullopt);
    EXPECT_EQ(fault.delay.count(), 0);
}

TEST(Fault_plan_test, A_fault_happens_as_often_as_planned) {
    Fault_plan sut;
    sut.add(Operation::write, failing_with(EIO), 2);
    EXPECT_EQ(sut.take(Operation::write).error, EIO);
    EXPECT_EQ(sut.take(Operation::write).error, EIO);
    EXPECT_EQ(sut.take(Operation::write).error, 0);
    EXPECT_FALSE(sut.has(Operation::write));
}

TEST(Fault_plan_test, Faults_of_one_operation_come_in_the_order_in_which_they_were_told) {
    Fault_plan sut;
    sut.add(Operation::write, failing_with(EIO), 1);
    sut.add(Operation::write, failing_with(EAGAIN), 1);
    EXPECT_EQ(sut.take(Operation::write).error, EIO);
    EXPECT_EQ(sut.take(Operation::write).error, EAGAIN);
}

TEST(Fault_plan_test, Operations_have_plans_of_their_own) {
    Fault_plan sut;
    sut.add(Operation::open, failing_with(EACCES), 1);
    EXPECT_EQ(sut.take(Operation::write).error, 0);
    EXPECT_EQ(sut.take(Operation::open).error, EACCES);
}

TEST(Fault_plan_test, No_occurrence_plans_nothing_and_clearing_forgets_all) {
    Fault_plan sut;
    sut.add(Operation::open, failing_with(EACCES), 0);
    EXPECT_FALSE(sut.has(Operation::open));
    sut.add(Operation::open, failing_with(EACCES), 5);
    sut.clear();
    EXPECT_FALSE(sut.has(Operation::open));
}

}  // namespace
}  // namespace bench::hypervisor
