#include "tools/check_config/finding.h"
#include "tools/check_config/words.h"

#include <string>

namespace statectl::check_config {

namespace {

using nlohmann::json;

std::string instead(Member const& member, json const& value) {
    if (member.kind == Kind::instances && !value.empty()) {
        return ", not a list: what it holds is taken for elements";  // by the daemon's loop
    }
    if (member.is_required) {
        return ", and " + type_name(member.kind) + " is needed";
    }
    return ", not " + type_name(member.kind) + ": " +
           (member.kind == Kind::section ? "its defaults count"
                                         : "the default " + default_of(member).dump() + " counts");
}

// A section of another type that says nothing is none, also for the daemon.
void check_type(Member const& member, Scene const& scene, Findings& findings) {
    auto const path = path_of(member);
    auto const& value = scene.document.at(path);
    auto const* const object =
        *member.section == '\0' ? &scene.document.configuration() : &scene.document.at(member.section);
    if (!object->is_object() || !object->contains(member.name) || has_type(value, member.kind)) {
        return;
    }
    findings.push_back({scene.document.line_of(path), path + " is " + type_name(value) + instead(member, value)});
}

void check_elements(Member const& member, Scene const& scene, Findings& findings) {
    auto const& list = scene.document.at(member.name);
    for (std::size_t i = 0; list.is_array() && i < list.size(); ++i) {
        if (!list[i].is_number()) {
            auto const path = std::string(member.name) + '[' + std::to_string(i) + ']';
            findings.push_back(
                {scene.document.line_of(path), path + " is " + type_name(list[i]) + ", and a number is needed"});
        }
    }
}

void check_number(std::string const& path, json const& given, json const& taken, Scene const& scene,
                  Findings& findings) {
    if (given.is_number() && given != taken) {
        findings.push_back({scene.document.line_of(path),
                            path + " is " + given.dump() + ", of which the daemon makes " + taken.dump()});
    }
}

void check_conversion(Member const& member, Scene const& scene, Findings& findings) {
    if (member.value == nullptr) {
        return;
    }
    auto const path = path_of(member);
    auto const& given = scene.document.at(path);
    auto const taken = member.value(*scene.verdict.config);
    check_number(path, given, taken, scene, findings);
    for (std::size_t i = 0; given.is_array() && taken.is_array() && i < std::min(given.size(), taken.size()); ++i) {
        check_number(path + '[' + std::to_string(i) + ']', given[i], taken[i], scene, findings);
    }
}

void check_zero(char const* name, std::uint32_t value, char const* meaning, Scene const& scene, Findings& findings) {
    if (value == 0) {
        findings.push_back({scene.document.line_of(name), std::string(name) + " is 0: " + meaning});
    }
}

}  // namespace

void check_types(Scene const& scene, Findings& findings) {
    for (auto const& member : members()) {
        check_type(member, scene, findings);
        if (member.kind == Kind::bytes) {
            check_elements(member, scene, findings);
        }
    }
}

void check_values(Scene const& scene, Findings& findings) {
    if (!scene.verdict.is_parsed) {
        return;
    }
    for (auto const& member : members()) {
        check_conversion(member, scene, findings);
    }
    auto const& config = *scene.verdict.config;
    check_zero("StateManagerMainPeriod", config.get_main_function_period(),
               "the daemon never rests and uses a processor for itself", scene, findings);
    constexpr char const* k_at_once = "each request times out at once";
    check_zero("ApplicationSuspendRequestTimeout", config.get_app_timeout(), k_at_once, scene, findings);
    check_zero("DMSuspendRequestTimeout", config.get_dm_timeout(), k_at_once, scene, findings);
    check_zero("PMSuspendRequestTimeout", config.get_pm_timeout(),
               "a fast shutdown grants the power-off service no time", scene, findings);
}

}  // namespace statectl::check_config
