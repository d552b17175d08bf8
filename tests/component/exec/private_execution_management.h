#ifndef TESTS_COMPONENT_EXEC_PRIVATE_EXECUTION_MANAGEMENT_H
#define TESTS_COMPONENT_EXEC_PRIVATE_EXECUTION_MANAGEMENT_H

#include "bench/process/player.h"
#include "bench/process/private_bus.h"
#include "bench/process/scratch_directory.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

/// A service manager on a bus of the test's own, which the process takes for the system's.
class Private_execution_management : public testing::Test {
 protected:
    Private_execution_management() { start_bus(); }
    ~Private_execution_management() override { ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    void start_bus() {
        manager.reset();
        bus.reset();
        bus = std::make_unique<bench::Private_bus>(directory.path().string());
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", bus->address().c_str(), 1);
        ::unlink(directory.file("notify").c_str());
        manager = std::make_unique<bench::Player>(std::vector<std::string>{SERVICE_MANAGER, directory.file("notify")});
    }

    void set_unit(char const* unit, char const* active) {
        manager->command({{"do", "set_unit"}, {"unit", unit}, {"active", active}});
    }

    bench::Scratch_directory directory;
    std::unique_ptr<bench::Private_bus> bus;
    std::unique_ptr<bench::Player> manager;
};

#endif
