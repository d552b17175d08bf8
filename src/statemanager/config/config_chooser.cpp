#include "statemanager/config/config_chooser.h"

#include "ara/log/logging.h"
#include "base/system_error.h"

#include <array>
#include <cerrno>

#include <unistd.h>

namespace ximo::ap::statemanager::config {
namespace {

// Longest name that is told apart is one less: the buffer keeps its terminator.
constexpr std::size_t k_host_name_buffer = 20;

}  // namespace

Config_chooser::Config_chooser() : Config_chooser(::gethostname) {}

Config_chooser::Config_chooser(Host_name_reader const& read_host_name) {
    set_host_name(read_host_name);
    file_of_host_ = {
        {HOST_HOUSEKEEPING, s_sm_config_hk},
        {HOST_JAVA, s_sm_config_jo},
        {HOST_APPLICATIONS, s_default_sm_config},
        {HOST_EMULATED, s_default_sm_config},
    };
}

// A name that does not fit is cut, also by a C library that fills the buffer and reports ENAMETOOLONG.
void Config_chooser::set_host_name(Host_name_reader const& read_host_name) {
    std::array<char, k_host_name_buffer> buffer{};
    if (read_host_name(buffer.data(), buffer.size()) != 0 && errno != ENAMETOOLONG) {
        ara::log::LogFatal() << "Unable to get hostname: " << base::system_error_text(errno);
        return;
    }
    buffer.back() = '\0';
    host_name_ = buffer.data();
    good_ = true;
    ara::log::LogInfo() << "Configuration for hostname: " << host_name_;
}

bool Config_chooser::good() const {
    return good_;
}

// A machine without a name is in no row, also when a row was left empty because that machine does not exist.
std::string Config_chooser::get_config_path() const {
    auto const row = file_of_host_.find(host_name_);
    if (host_name_.empty() || row == file_of_host_.end()) {
        return s_default_config_folder + s_default_sm_config;
    }
    return s_default_config_folder + row->second;
}

}  // namespace ximo::ap::statemanager::config
