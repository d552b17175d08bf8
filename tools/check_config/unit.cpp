#include "tools/check_config/unit.h"

#include "tools/check_config/shipped_unit.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace statectl::check_config {

namespace {

namespace fs = std::filesystem;

std::string trimmed(std::string const& text) {
    constexpr char const* k_blanks = " \t\r";
    auto const begin = text.find_first_not_of(k_blanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(k_blanks) - begin + 1);
}

double unit_of_time(std::string const& word) {
    static std::map<std::string, double> const units{
        {"", 1},         {"s", 1},     {"sec", 1},     {"second", 1},  {"seconds", 1}, {"ms", 1e-3},
        {"msec", 1e-3},  {"us", 1e-6}, {"usec", 1e-6}, {"m", 60},      {"min", 60},    {"minute", 60},
        {"minutes", 60}, {"h", 3600},  {"hr", 3600},   {"hour", 3600}, {"hours", 3600}};
    auto const found = units.find(word);
    return found == units.end() ? 0 : found->second;
}

// "1min 30s", "500ms", "20"; nothing for "infinity", and for 0, which the service manager takes for it.
std::optional<double> seconds_of(std::string const& text) {
    if (text == "infinity") {
        return std::nullopt;
    }
    std::istringstream words(text);
    double sum = 0;
    double count = 0;
    while (words >> count) {
        std::string word;
        auto const end = words.peek();
        if (end != std::istringstream::traits_type::eof() && std::isalpha(end) != 0) {
            while (words.peek() != std::istringstream::traits_type::eof() && std::isalpha(words.peek()) != 0) {
                word += static_cast<char>(words.get());
            }
        }
        sum += count * unit_of_time(word);
    }
    return sum == 0 ? std::nullopt : std::optional<double>(sum);
}

bool is_yes(std::string const& text) {
    static std::set<std::string> const words{"yes", "true", "1", "on"};
    return words.count(text) != 0;
}

void add_paths(std::string const& text, std::string const& folder, Unit& unit) {
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        unit.writable.push_back(folder + word.substr(std::min(word.find_first_not_of("-+"), word.size())));
    }
}

void add_prefixes(std::string const& command, Unit& unit) {
    constexpr std::string_view k_prefix = "--prefix=";
    std::istringstream words(command);
    for (std::string word; words >> word;) {
        if (word.rfind(k_prefix, 0) == 0 && command.find("systemd-tmpfiles") != std::string::npos) {
            unit.prefixes.push_back(word.substr(k_prefix.size()));
        }
    }
}

void add_groups(std::string const& text, Unit& unit) {
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        unit.groups.push_back(word);
    }
}

void note(std::string const& key, std::string const& value, Unit& unit) {
    if (key == "WatchdogSec") {
        unit.watchdog_seconds = seconds_of(value);
    } else if (key == "TimeoutStopSec" || key == "TimeoutSec") {
        unit.stop_seconds = seconds_of(value);
    } else if (key == "ProtectSystem") {
        unit.is_strict = value == "strict";
    } else if (key == "PrivateTmp") {
        unit.has_private_tmp = is_yes(value);
    } else if (key == "ReadWritePaths" && value.empty()) {
        unit.writable.clear();
    } else if (key == "ReadWritePaths") {
        add_paths(value, "", unit);
    } else if (key == "User") {
        unit.user = value;
    } else if (key == "Group") {
        unit.groups.insert(unit.groups.begin(), value);
    } else if (key == "SupplementaryGroups") {
        add_groups(value, unit);
    } else if (key == "ExecStartPre") {
        add_prefixes(value, unit);
    } else if (key == "RuntimeDirectory") {
        add_paths(value, "/run/", unit);
    } else if (key == "StateDirectory") {
        add_paths(value, "/var/lib/", unit);
    }
}

std::string content_of(fs::path const& path) {
    std::ifstream file(path);
    if (!fs::is_regular_file(path) || !file) {
        throw std::runtime_error(path.string() + " can't be read");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

void read_drop_ins(std::vector<fs::path> const& folders, Unit& unit) {
    std::map<std::string, fs::path> files;  // by name, the first folder's first
    for (auto const& folder : folders) {
        std::error_code error;
        for (auto const& entry : fs::directory_iterator(folder, error)) {
            if (entry.path().extension() == ".conf") {
                files.emplace(entry.path().filename().string(), entry.path());
            }
        }
    }
    for (auto const& [name, path] : files) {
        read_unit(content_of(path), unit);
    }
}

}  // namespace

void read_unit(std::string_view text, Unit& unit) {
    std::istringstream lines{std::string(text)};
    bool is_service = false;
    for (std::string line; std::getline(lines, line);) {
        line = trimmed(line);
        auto const equals = line.find('=');
        if (line.empty() || line.front() == '#' || line.front() == ';') {
            continue;
        }
        if (line.front() == '[') {
            is_service = line == "[Service]";
        } else if (is_service && equals != std::string::npos) {
            note(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)), unit);
        }
    }
}

Unit shipped_unit() {
    Unit unit;
    unit.name = "the shipped unit";
    read_unit(k_shipped_unit, unit);
    return unit;
}

Unit unit_named(std::string const& name) {
    Unit unit;
    unit.name = name;
    if (name.find('/') != std::string::npos) {
        read_unit(content_of(name), unit);
        read_drop_ins({name + ".d"}, unit);
        return unit;
    }
    auto const file = name.find('.') == std::string::npos ? name + ".service" : name;
    constexpr std::array<char const*, 5> k_folders{"/etc/systemd/system", "/run/systemd/system",
                                                   "/usr/local/lib/systemd/system", "/usr/lib/systemd/system",
                                                   "/lib/systemd/system"};
    std::vector<fs::path> drop_ins;
    auto const* const found = std::find_if(k_folders.begin(), k_folders.end(), [&](char const* folder) {
        return fs::is_regular_file(fs::path(folder) / file);
    });
    if (found == k_folders.end()) {
        throw std::runtime_error("there is no unit " + file + " on this machine; name its file with a /");
    }
    read_unit(content_of(fs::path(*found) / file), unit);
    std::transform(k_folders.begin(), k_folders.end(), std::back_inserter(drop_ins),
                   [&](char const* folder) { return fs::path(folder) / (file + ".d"); });
    read_drop_ins(drop_ins, unit);
    return unit;
}

}  // namespace statectl::check_config
