#ifndef TESTS_UNIT_BENCH_HYPERVISOR_COMMAND_FIXTURE_H
#define TESTS_UNIT_BENCH_HYPERVISOR_COMMAND_FIXTURE_H

#include "bench/hypervisor/commands.h"

#include <string>

#include <gtest/gtest.h>

namespace bench::hypervisor {

/// The commands on a model with the keyboard "event0", which one reader has open.
class Command_fixture : public testing::Test {
 protected:
    static constexpr Input_device::Reader k_reader = 1;

    Command_fixture() {
        add_commands(table, model);
        device = model.add_device("event0", 0b11);
        device->add_reader(k_reader);
        model.on_change([this](Input_device&) { ++changes; });
    }

    nlohmann::json sut(nlohmann::json const& command) { return table.answer(command.dump()); }

    // Number of records that wait for the reader.
    std::size_t waiting_records() { return device->read(k_reader, 24UL * 64).bytes.size() / 24; }

    Model model;
    Command_table table;
    std::shared_ptr<Input_device> device;
    int changes = 0;
};

}  // namespace bench::hypervisor

#endif
