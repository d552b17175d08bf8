// `check_names` looks at every object of the configuration: unknown names first, each with the missing one that it is
// taken for, then what is missing and was not taken for another's slip, then names that stand there twice.

#include "tools/check_config/finding.h"
#include "tools/check_config/words.h"

#include <algorithm>
#include <set>
#include <string>

namespace statectl::check_config {

namespace {

using nlohmann::json;

constexpr char const* k_root = "ap_statemanager";

/// The members that one object may have, and has.
struct Place {
    std::string path;  ///< of the object, "" for the configuration object itself
    json const& object;
    std::vector<std::string> known;
    std::vector<std::string> required;
};

std::string below(std::string const& path, std::string const& name) {
    return path.empty() ? name : path + '.' + name;
}

// The best guess at what an unknown name is to be: a missing member rather than one that is there.
std::string meant(Place const& place, std::string const& name) {
    auto const is_better = [&](std::string const& left, std::string const& right) {
        bool const has_left = place.object.contains(left);
        bool const has_right = place.object.contains(right);
        return has_left != has_right ? has_right : distance(left, name) < distance(right, name);
    };
    std::string best;
    for (auto const& known : place.known) {
        if (is_like(known, name) && (best.empty() || is_better(known, best))) {
            best = known;
        }
    }
    return best;
}

std::string home_of(std::string const& name) {
    for (auto const& member : members()) {
        if (name == member.name) {
            return *member.section == '\0' ? k_root : member.section;
        }
    }
    return {};
}

// Finds the unknown members of an object; the missing ones that they are taken for need no second sentence.
std::set<std::string> check_unknown(Place const& place, Document const& document, Findings& findings) {
    std::set<std::string> guessed;
    for (auto const& [name, value] : place.object.items()) {
        if (std::find(place.known.begin(), place.known.end(), name) != place.known.end()) {
            continue;
        }
        auto const guess = meant(place, name);
        auto const home = home_of(name);
        auto text = '"' + name + "\" is not known and is ignored";
        if (!guess.empty()) {
            text += ": is " + guess + " meant" + (place.object.contains(guess) ? "" : ", which is missing") + "?";
            guessed.insert(guess);
        } else if (!home.empty()) {
            text.assign(1, '"').append(name).append("\" is ignored here: its place is in ").append(home);
            guessed.insert(name);
        }
        findings.push_back({document.line_of(below(place.path, name)), text});
    }
    return guessed;
}

void check_missing(Place const& place, std::set<std::string> const& guessed, Document const& document,
                   Findings& findings) {
    for (auto const& name : place.required) {
        if (!place.object.contains(name) && guessed.count(name) == 0) {
            findings.push_back({document.line_of(below(place.path, name)), below(place.path, name) + " is missing"});
        }
    }
}

Place section_place(std::string const& section, json const& object) {
    Place place{section, object, {}, {}};
    for (auto const& member : members_of(section)) {
        place.known.emplace_back(member.name);
        // An empty section counts as none.
        if (member.is_required && (section.empty() || !object.empty())) {
            place.required.emplace_back(member.name);
        }
    }
    return place;
}

void check_place(Place const& place, Scene const& scene, std::set<std::string>& elsewhere, Findings& findings) {
    auto const guessed = check_unknown(place, scene.document, findings);
    elsewhere.insert(guessed.begin(), guessed.end());
}

void check_elements(Member const& list, Scene const& scene, Findings& findings) {
    auto const& elements = scene.document.at(list.name);
    for (std::size_t i = 0; elements.is_array() && i < elements.size(); ++i) {
        auto const path = std::string(list.name) + '[' + std::to_string(i) + ']';
        if (elements[i].is_object()) {
            Place const place{path, elements[i], {list.element}, {list.element}};
            auto const guessed = check_unknown(place, scene.document, findings);
            if (!elements[i].contains(list.element) && guessed.count(list.element) == 0) {
                findings.push_back(
                    {scene.document.line_of(path), path + " has no " + list.element + " and is left out"});
            }
        }
    }
}

void check_repeated(Scene const& scene, Findings& findings) {
    auto const prefix = std::string(k_root) + '.';
    for (auto const& [path, line, first_line] : scene.document.repeated()) {
        auto const name = path.rfind(prefix, 0) == 0 ? path.substr(prefix.size()) : path;
        findings.push_back(
            {line, name + " stands here again, first in line " + std::to_string(first_line) + ": the last one counts"});
    }
}

// A file without a configuration object; false when it has one.
bool is_without_object(Scene const& scene, Findings& findings) {
    auto const& whole = scene.document.whole();
    if (!whole.is_object()) {
        findings.push_back(
            {1, "the file holds " + type_name(whole) + ", and an object with a member " + k_root + " is needed"});
        return true;
    }
    if (whole.contains(k_root)) {
        if (!whole.at(k_root).is_object()) {
            findings.push_back({scene.document.line_of({}), std::string(k_root) + " is " + type_name(whole.at(k_root)) +
                                                                ", and an object is needed"});
        }
        for (auto const& [name, value] : whole.items()) {
            if (name != k_root && name != "$schema") {
                findings.push_back(
                    {scene.document.line_beside(name), '"' + name + "\" beside " + k_root + " is ignored"});
            }
        }
        return !whole.at(k_root).is_object();
    }
    bool const is_bare = whole.contains(members().front().name);
    for (auto const& [name, value] : whole.items()) {
        if (is_like(name, k_root)) {
            findings.push_back({scene.document.line_beside(name), '\"' + name + "\" is not known and is ignored: is " +
                                                                      k_root + " meant, which is missing?"});
            return true;
        }
    }
    findings.push_back({1, std::string(k_root) + " is missing" +
                               (is_bare ? ": its members stand outside of it" : ", the object with all members")});
    return true;
}

}  // namespace

void check_names(Scene const& scene, Findings& findings) {
    if (is_without_object(scene, findings)) {
        return;
    }
    std::set<std::string> guessed;
    std::vector<Place> places{section_place("", scene.document.configuration())};
    for (auto const& member : members()) {
        auto const& value = scene.document.at(member.name);
        if (member.kind == Kind::section && value.is_object()) {
            places.push_back(section_place(member.name, value));
        } else if (member.kind == Kind::instances) {
            check_elements(member, scene, findings);
        }
    }
    for (auto const& place : places) {
        check_place(place, scene, guessed, findings);
    }
    for (auto const& place : places) {
        check_missing(place, guessed, scene.document, findings);
    }
    check_repeated(scene, findings);
}

}  // namespace statectl::check_config
