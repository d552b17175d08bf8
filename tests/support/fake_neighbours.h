#ifndef TESTS_SUPPORT_FAKE_NEIGHBOURS_H
#define TESTS_SUPPORT_FAKE_NEIGHBOURS_H

#include "state_notifier/state_notifier_interface.h"
#include "statemanager/em_interface_abstract.h"
#include "statemanager/supervision_manager_interface.h"
#include "statemanager/virtio_interface_abstract.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace test_support {

/// Execution management that notes what was asked of it.
class Fake_execution_management : public ximo::ap::statemanager::Em_interface_abstract {
 public:
    std::vector<std::string> actions;
    std::function<void(std::string const&)> listener = [](auto const& /*action*/) {};  ///< told of each action at once

    void request_shutdown() override { note("request_shutdown"); }
    void request_running() override { note("request_running"); }
    bool check_for_running_state() override { return true; }
    ara::exec::State_client_result StateClient_SetState(std::string const& /*function_group*/,
                                                        std::string const& /*state*/) override {
        return ara::exec::State_client_result::kSuccess;
    }
    ara::exec::State_client_result GetState(std::string const& /*function_group*/, std::string& /*state*/,
                                            ara::exec::Function_group_state_transition& /*transition*/) override {
        return ara::exec::State_client_result::kSuccess;
    }

 private:
    void note(std::string const& action) {
        actions.push_back(action);
        listener(action);
    }
};

/// Suspend and resume sequences that last as long as `busy` says.
class Fake_state_notifier : public ximo::ap::statemanager::state_notifier::State_notifier_interface {
 public:
    bool busy{false};
    std::vector<std::string> actions;
    std::function<void(std::string const&)> listener = [](auto const& /*action*/) {};  ///< told of each action at once

    void request_standby() override { note("request_standby"); }
    void request_resume() override { note("request_resume"); }
    unsigned int check_request_status() override { return busy ? 1 : 0; }

 private:
    void note(std::string const& action) {
        actions.push_back(action);
        listener(action);
    }
};

/// A hypervisor that presses keys: commands wait in a queue until they are consumed.
class Fake_virtual_input : public ximo::ap::statemanager::virtio::Virtio_interface_abstract {
 public:
    using Command = ximo::ap::statemanager::virtio::Virtio_command;

    bool usable{true};
    std::deque<Command> queue;
    std::vector<std::string> directories;
    std::vector<unsigned int> timeouts;
    int consumed{0};
    std::function<void()> while_waiting{[] {}};

    bool init(std::string device_directory) override {
        directories.push_back(std::move(device_directory));
        return usable;
    }
    Command get_command(unsigned int timeout_ms) override {
        timeouts.push_back(timeout_ms);
        while_waiting();
        return queue.empty() ? Command::none : queue.front();
    }
    void command_consumed() override {
        ++consumed;
        if (!queue.empty()) {
            queue.pop_front();
        }
    }
};

/// Health management that counts beats.
class Fake_supervision : public ximo::ap::statemanager::phm::Supervision_manager_interface {
 public:
    explicit Fake_supervision(int& beats) : beats_(beats) {}
    void report_alive_status() override { ++beats_; }

 private:
    int& beats_;
};

}  // namespace test_support

#endif
