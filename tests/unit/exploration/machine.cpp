#include "machine.h"

#include "statemanager/states/state_interface.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace exploration {

using ximo::ap::statemanager::states::State_interface;

namespace {

std::array<std::string, 8> const k_names{"Starting up",   "Running",   "NM Controlled", "Post Run",
                                         "Shutting down", "Preparing", "PreparedSD",    "Resuming"};

ara::log::Argument const k_transition{std::string("AP_StateManger transition from")};
ara::log::Argument const k_refusal{std::string("AP_StateManger not initialized")};

std::uint16_t key_of(Virtio_command command) {
    switch (command) {
        case Virtio_command::run:
            return KEY_R;
        case Virtio_command::nm_controlled:
            return KEY_N;
        case Virtio_command::nm_controlled_prepare_sd:
            return KEY_S;
        case Virtio_command::prepare_sd:
            return KEY_P;
        default:
            return KEY_POWER;
    }
}

}  // namespace

std::string const& name_of(unsigned state) {
    return k_names.at(state);
}

Machine::Machine(bool nm_usage, std::string const& status_file, Driver_log& log)
    : log_(log),
      input_(new ximo::ap::statemanager::virtio::Virtio_interface(devices_)),
      driver_(configuration_, conditions_, em_,
              std::unique_ptr<ximo::ap::statemanager::virtio::Virtio_interface_abstract>(input_),
              std::make_unique<test_support::Fake_supervision>(beats_)) {
    configuration_.set_nm_usage(nm_usage);
    configuration_.set_smw_update_status_path(status_file);
    configuration_.set_main_function_period(0);
    configuration_.set_knockout_timer(k_knockout);
    State_interface::set_prepare_SD_flag(false);
    State_interface::set_forced_shutdown_flag(false);
    std::ofstream const empty(status_file, std::ios::trunc);
    devices_.add_device("event0");
    if (!driver_.init()) {
        throw std::logic_error("the machine does not start");
    }
    clients_ = Modelled_clients::latest();
}

void Machine::press(Virtio_command key) {
    devices_.send("event0", EV_KEY, key_of(key), 1);
    input_->check_for_commands(0);
}

Cycle Machine::cycle(std::vector<bool> const& conditions) {
    Cycle cycle{head(), {}, false};
    log_.forget();
    conditions_->begin_cycle(conditions);
    driver_.run_cyclic_task();
    read_log(cycle);
    return cycle;
}

std::string Machine::read_words() {
    std::ifstream file(configuration_.get_smw_update_status_path());
    file.seekg(static_cast<std::streamoff>(read_));
    std::string words((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    read_ += words.size();
    return words;
}

void Machine::read_log(Cycle& cycle) {
    for (auto const& arguments : log_.messages()) {
        if (arguments.front() == k_transition) {
            auto const name = std::find(k_names.begin(), k_names.end(), std::get<std::string>(arguments.at(3)));
            cycle.entered = static_cast<unsigned>(name - k_names.begin());
        } else if (arguments.front() == k_refusal) {
            cycle.was_refused = true;
        }
    }
}

}  // namespace exploration
