// `check_instances` takes each of the three lists as the daemon does: its form, its names up to the maximum, each name,
// and names that stand twice; at the end the lists are held against each other.

#include "ara/com/instance.h"
#include "tools/check_config/finding.h"
#include "tools/check_config/words.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <map>
#include <string>

namespace statectl::check_config {

namespace {

using nlohmann::json;

/// One name of a list that the daemon takes.
struct Named {
    Member const* list;
    std::string name;
    std::string path;
};

std::string element_path(Member const& list, std::size_t index) {
    return std::string(list.name) + '[' + std::to_string(index) + ']';
}

// The daemon goes through the values of whatever stands where a list is meant.
void check_list(Member const& list, Scene const& scene, Findings& findings) {
    auto const& value = scene.document.at(list.name);
    if (value.is_array() && value.empty()) {
        findings.push_back(
            {scene.document.line_of(list.name), std::string(list.name) + " is empty, and one element is needed"});
    }
    for (std::size_t i = 0; value.is_array() && i < value.size(); ++i) {
        auto const path = element_path(list, i);
        auto const& element = value[i];
        if (!element.is_object()) {
            findings.push_back({scene.document.line_of(path),
                                path + " is " + type_name(element) + ", not an object, and is left out"});
        } else if (element.contains(list.element) && !element.at(list.element).is_string()) {
            findings.push_back({scene.document.line_of(path), path + '.' + list.element + " is " +
                                                                  type_name(element.at(list.element)) +
                                                                  ", not text, and is left out"});
        }
    }
}

std::vector<Named> names_in(Member const& list, Scene const& scene) {
    std::vector<Named> names;
    auto const& value = scene.document.at(list.name);
    for (std::size_t i = 0; value.is_array() && i < value.size(); ++i) {
        if (value[i].is_object() && value[i].contains(list.element) && value[i].at(list.element).is_string()) {
            names.push_back({&list, value[i].at(list.element).get<std::string>(), element_path(list, i)});
        }
    }
    return names;
}

// Cuts a list to its maximum, as the daemon does.
void cut(std::vector<Named>& names, Member const& list, Scene const& scene, Findings& findings) {
    auto const& maximum = scene.document.at(list.maximum);
    if (!scene.verdict.is_parsed || !maximum.is_number()) {
        return;
    }
    auto const most = std::find_if(members().begin(), members().end(),
                                   [&](Member const& member) { return member.name == std::string(list.maximum); })
                          ->value(*scene.verdict.config)
                          .get<std::size_t>();
    if (names.size() <= most) {
        return;
    }
    auto const count = names.size() - most;
    // A maximum of 0 and one name is how a list without applications is written.
    if (most > 0 || count > 1) {
        findings.push_back({scene.document.line_of(names[most].path),
                            std::string(list.name) + " has " + std::to_string(names.size()) + " names, and " +
                                list.maximum + " is " + std::to_string(most) + ": \"" + names[most].name +
                                (count == 1 ? "\" is left out" : "\" and what follows are left out")});
    }
    names.resize(most);
}

void check_name(Named const& named, Scene const& scene, Findings& findings) {
    try {
        [[maybe_unused]] ara::com::InstanceIdentifier const name(named.name);
    } catch (std::exception const& error) {
        std::string const reason(error.what());
        auto const colon = reason.find(": ");
        findings.push_back({scene.document.line_of(named.path),
                            named.path + " is \"" + named.name + "\", which can't be the name of an instance" +
                                (colon == std::string::npos ? "" : reason.substr(colon))});
    }
}

void check_repeated_names(std::vector<Named> const& names, Scene const& scene, Findings& findings) {
    std::map<std::string, int> count;
    for (auto const& named : names) {
        if (++count[named.name] == 2) {
            findings.push_back(
                {scene.document.line_of(named.path),
                 '"' + named.name + "\" stands twice in " + named.list->name + ", which the daemon does not notice"});
        }
    }
}

std::string without_digits(std::string name) {
    name.erase(
        std::remove_if(name.begin(), name.end(), [](unsigned char character) { return std::isdigit(character) != 0; }),
        name.end());
    return name;
}

// "app1" and "app2" are two applications, and "navigation" and "navigaton" are one with a slip.
bool is_slip(std::string const& left, std::string const& right) {
    bool const differ_in_digits = without_digits(left) == without_digits(right) && distance(left, right) > 0;
    return left != right && !differ_in_digits && is_like(left, right);
}

// Of a name that stands in one list alone: whether it is another list's with a slip.
void check_same_names(std::vector<std::vector<Named>> const& lists, Scene const& scene, Findings& findings) {
    constexpr std::size_t k_most = 64;  // each pair is looked at
    for (std::size_t i = 1; i < lists.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            for (std::size_t n = 0; n < std::min(lists[i].size(), k_most); ++n) {
                auto const& named = lists[i][n];
                auto const& others = lists[j];
                auto const end = others.begin() + static_cast<std::ptrdiff_t>(std::min(others.size(), k_most));
                auto const same = [&](Named const& other) { return other.name == named.name; };
                auto const like = std::find_if(others.begin(), end,
                                               [&](Named const& other) { return is_slip(other.name, named.name); });
                if (like != end && std::none_of(others.begin(), end, same)) {
                    findings.push_back({scene.document.line_of(named.path),
                                        '"' + named.name + "\" in " + named.list->name + " and \"" + like->name +
                                            "\" in " + like->list->name +
                                            " differ: an application needs one name in all lists"});
                }
            }
        }
    }
}

}  // namespace

void check_instances(Scene const& scene, Findings& findings) {
    std::vector<std::vector<Named>> lists;
    for (auto const& member : members()) {
        if (member.kind != Kind::instances) {
            continue;
        }
        check_list(member, scene, findings);
        auto names = names_in(member, scene);
        cut(names, member, scene, findings);
        for (auto const& named : names) {
            check_name(named, scene, findings);
        }
        check_repeated_names(names, scene, findings);
        lists.push_back(std::move(names));
    }
    check_same_names(lists, scene, findings);
}

}  // namespace statectl::check_config
