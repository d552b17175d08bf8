#ifndef TESTS_UNIT_STATES_STATE_FIXTURE_H
#define TESTS_UNIT_STATES_STATE_FIXTURE_H

#include "statemanager/smw/shared_memory_update.h"
#include "statemanager/states/state_interface.h"
#include "support/fake_neighbours.h"
#include "support/fake_service_handler.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <array>
#include <memory>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::states {

inline constexpr std::array<virtio::Virtio_command, 6> k_all_commands{
    virtio::Virtio_command::none,          virtio::Virtio_command::run,
    virtio::Virtio_command::nm_controlled, virtio::Virtio_command::nm_controlled_prepare_sd,
    virtio::Virtio_command::prepare_sd,    virtio::Virtio_command::shutdown};

/// A state's surroundings: neighbours that a test arranges, a control file that it reads, and flags as at the start.
class State_test : public testing::Test {
 protected:
    State_test() {
        State_interface::set_prepare_SD_flag(false);
        State_interface::set_forced_shutdown_flag(false);
    }
    ~State_test() override {
        State_interface::set_prepare_SD_flag(false);
        State_interface::set_forced_shutdown_flag(false);
    }

    std::string written() const { return files.read("status"); }

    test_support::Temporary_directory files;
    std::shared_ptr<smw::Shared_memory_update> shared_memory{
        std::make_shared<smw::Shared_memory_update>(files.file("status"))};
    std::shared_ptr<test_support::Fake_service_handler> services{
        std::make_shared<test_support::Fake_service_handler>()};
    std::shared_ptr<test_support::Fake_execution_management> em{
        std::make_shared<test_support::Fake_execution_management>()};
    std::shared_ptr<test_support::Fake_state_notifier> notifier{std::make_shared<test_support::Fake_state_notifier>()};
    test_support::Log_capture log;
};

}  // namespace ximo::ap::statemanager::states

#endif
