#ifndef TESTS_COMPONENT_BENCH_SERVICE_MANAGER_MANAGED_FIXTURE_H
#define TESTS_COMPONENT_BENCH_SERVICE_MANAGER_MANAGED_FIXTURE_H

#include "base/temporary_directory.h"
#include "bench/process/player.h"
#include "bench/process/private_bus.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace bench::service_manager {

/// The real program on a real bus of its own, with the units of the machine state.
class Managed_fixture : public testing::Test {
 protected:
    std::string notify_path() const { return directory.file("notify"); }

    base::Temporary_directory directory;
    Private_bus bus{directory.path()};
    Player sut{{BENCH_SERVICE_MANAGER, notify_path()}, {"DBUS_SYSTEM_BUS_ADDRESS=" + bus.address()}};
};

}  // namespace bench::service_manager

#endif
