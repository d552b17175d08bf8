#include "tools/check_config/finding.h"
#include "tools/check_config/rights.h"

#include <algorithm>
#include <filesystem>
#include <string>

namespace statectl::check_config {

namespace {

bool is_below(std::string const& path, std::string const& folder) {
    return path == folder || path.rfind(folder.back() == '/' ? folder : folder + '/', 0) == 0;
}

std::string drop_in(std::string const& line) {
    return ": put into a drop-in [Service] " + line;
}

std::string trouble_of(std::string const& path, Unit const& unit) {
    if (path.empty()) {
        return "is empty: the hypervisor never hears a word";
    }
    if (path.front() != '/') {
        return "is \"" + path + "\", which does not begin with a /";
    }
    std::error_code error;
    if (path.back() == '/' || std::filesystem::is_directory(path, error)) {
        return "is " + path + ", which names a folder";
    }
    auto const plain = std::filesystem::path(path).lexically_normal().string();
    if (unit.has_private_tmp && (is_below(plain, "/tmp") || is_below(plain, "/var/tmp"))) {
        return "is " + path + ", and " + unit.name + " has a /tmp of its own, which nobody else sees";
    }
    if (unit.is_strict && is_below(plain, "/dev")) {
        return "is " + path + ", and " + unit.name + " may open no such device" +
               drop_in("DeviceAllow=" + plain + " w");
    }
    bool const may_write = !unit.is_strict || std::any_of(unit.writable.begin(), unit.writable.end(),
                                                          [&](auto const& folder) { return is_below(plain, folder); });
    if (!may_write) {
        auto const folder = std::filesystem::path(plain).parent_path().string();
        return "is " + path + ", where " + unit.name + " may not write" + drop_in("ReadWritePaths=-" + folder);
    }
    auto const right = missing_right(plain, unit);
    return right.empty() ? right : "is " + path + ", and " + right;
}

}  // namespace

void check_paths(Scene const& scene, Findings& findings) {
    if (!scene.verdict.is_parsed) {
        return;
    }
    auto const& config = *scene.verdict.config;
    auto const status = config.get_smw_update_status_path();
    auto const command = config.get_smw_restart_command_path();
    auto const check = [&](char const* name, std::string const& path) {
        auto const trouble = trouble_of(path, scene.unit);
        auto const member = std::string("SharedMemoryConfig.") + name;
        if (!trouble.empty()) {
            findings.push_back({scene.document.line_of(member), member + ' ' + trouble});
        }
    };
    check("UpdateStatusFile", status);
    check("RestartCommandFile", command);
    if (status == command) {
        findings.push_back({scene.document.line_of("SharedMemoryConfig"),
                            "SharedMemoryConfig names one file for states and restarts: " + status});
    }
}

}  // namespace statectl::check_config
