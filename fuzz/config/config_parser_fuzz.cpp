// The configuration parser on any bytes: it throws nothing, stays in its bounds, and a configuration that it accepts
// keeps every rule that its users rely on.
#include "require.h"
#include "statemanager/config/configuration_file.h"
#include "statemanager/config/state_manager_json_parser.h"

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using fuzz::require;
using ximo::ap::statemanager::config::State_manager_config;
using ximo::ap::statemanager::config::State_manager_json_parser;

/// A file without a name that holds the bytes of one run.
class Memory_file {
 public:
    Memory_file(std::uint8_t const* data, std::size_t size) : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)) {
        require(::write(descriptor_, data, size) == static_cast<ssize_t>(size));
    }
    ~Memory_file() { ::close(descriptor_); }
    Memory_file(Memory_file const&) = delete;
    Memory_file& operator=(Memory_file const&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
    int descriptor_;
};

void check_rules(State_manager_config const& config) {
    require(config.get_apps_ecualive().size() <= config.get_max_apps_ecualive());
    require(config.get_apps_comalive().size() <= config.get_max_apps_comalive());
    require(config.get_apps_cwu().size() <= config.get_max_apps_cwu());
    State_manager_config again;
    require(again.set_nm_user_data_config(config.get_nm_user_data_config()));
}

bool same(State_manager_config const& left, State_manager_config const& right) {
    return left.get_knockout_timer() == right.get_knockout_timer() &&
           left.get_main_function_period() == right.get_main_function_period() &&
           left.get_nm_request_pattern() == right.get_nm_request_pattern() &&
           left.get_apps_ecualive() == right.get_apps_ecualive() &&
           left.get_apps_comalive() == right.get_apps_comalive() && left.get_apps_cwu() == right.get_apps_cwu();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Memory_file const file(data, size);
    State_manager_config config;
    auto const accepted = State_manager_json_parser::parse(file.path(), config);
    check_rules(config);

    State_manager_config again;
    require(State_manager_json_parser::parse(file.path(), again) == accepted);
    require(same(config, again));
    return 0;
}
