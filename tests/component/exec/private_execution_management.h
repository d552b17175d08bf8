#ifndef TESTS_COMPONENT_EXEC_PRIVATE_EXECUTION_MANAGEMENT_H
#define TESTS_COMPONENT_EXEC_PRIVATE_EXECUTION_MANAGEMENT_H

#include "base/temporary_directory.h"
#include "bench/process/player.h"
#include "bench/process/private_bus.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <systemd/sd-bus.h>
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

    /// Without it the bus knows within a moment: until then it takes calls for it, which end in another error.
    void end_manager() {
        manager.reset();
        sd_bus* opened = nullptr;
        ASSERT_GE(::sd_bus_open_system(&opened), 0);
        std::unique_ptr<sd_bus, decltype(&::sd_bus_flush_close_unref)> const connection(opened,
                                                                                        &::sd_bus_flush_close_unref);
        for (int has_owner = 1; has_owner != 0;) {
            sd_bus_message* answer = nullptr;
            ASSERT_GE(::sd_bus_call_method(opened, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner",
                                           nullptr, &answer, "s", "org.freedesktop.systemd1"),
                      0);
            ::sd_bus_message_read(answer, "b", &has_owner);
            ::sd_bus_message_unref(answer);
        }
    }

    void set_unit(char const* unit, char const* active) {
        manager->command({{"do", "set_unit"}, {"unit", unit}, {"active", active}});
    }

    base::Temporary_directory directory;
    std::unique_ptr<bench::Private_bus> bus;
    std::unique_ptr<bench::Player> manager;
};

#endif
