#ifndef STATEMANAGER_CONFIG_CONFIG_CHOOSER_H
#define STATEMANAGER_CONFIG_CONFIG_CHOOSER_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>

namespace ximo::ap::statemanager::config {

/// Chooses the configuration file by the name of the machine, so that one image serves every virtual machine.
///
/// Make one, stop the start when it is not `good()`, hand `get_config_path()` to the parser. The names of the machines
/// are fixed when the daemon is built (STATEMANAGER_HOST_...); a machine with any other name reads the default file.
class Config_chooser {
 public:
    /// Reads the host name as gethostname(2) does: into a buffer of a size, 0 for success, -1 and errno for failure.
    using Host_name_reader = std::function<int(char* buffer, std::size_t size)>;

    inline static std::string const s_default_config_folder{"/etc/adaptive/"};
    inline static std::string const s_default_sm_config{"ap_statemanager.json"};
    inline static std::string const s_sm_config_hk{"ap_statemanager_hk.json"};
    inline static std::string const s_sm_config_jo{"ap_statemanager_jo.json"};

    /// Chooses for the machine that the process runs on.
    Config_chooser();

    /// Chooses for the machine that the reader names.
    explicit Config_chooser(Host_name_reader const& read_host_name);

    /// Whether the host name could be read; the path is the default one where it could not.
    bool good() const;

    std::string get_config_path() const;

 private:
    void set_host_name(Host_name_reader const& read_host_name);

    bool good_{false};
    std::string host_name_;
    std::map<std::string, std::string> file_of_host_;
};

}  // namespace ximo::ap::statemanager::config

#endif
