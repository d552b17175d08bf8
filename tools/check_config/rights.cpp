#include "tools/check_config/rights.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <vector>

#include <fnmatch.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace statectl::check_config {

namespace {

namespace fs = std::filesystem;

constexpr mode_t k_write = 2;
constexpr mode_t k_enter = 1;

struct Account {
    uid_t user;
    std::vector<gid_t> groups;
};

void add_group(std::string const& name, Account& account) {
    if (auto const* const group = ::getgrnam(name.c_str())) {
        account.groups.push_back(group->gr_gid);
    }
}

// Nothing for root, whom no file refuses, and for a user that this machine has not.
std::optional<Account> account_of(Unit const& unit) {
    auto const* const user = ::getpwnam(unit.user.c_str());
    if (user == nullptr || user->pw_uid == 0) {
        return std::nullopt;
    }
    Account account{user->pw_uid, {}};
    int count = 256;
    account.groups.resize(static_cast<std::size_t>(count));
    ::getgrouplist(unit.user.c_str(), user->pw_gid, account.groups.data(), &count);
    account.groups.resize(static_cast<std::size_t>(std::clamp(count, 0, 256)));
    for (auto const& name : unit.groups) {
        add_group(name, account);
    }
    return account;
}

bool may(Account const& account, struct stat const& file, mode_t right) {
    constexpr unsigned k_owner = 6;
    constexpr unsigned k_group = 3;
    if (file.st_uid == account.user) {
        return (file.st_mode >> k_owner & right) != 0;
    }
    bool const is_member = std::find(account.groups.begin(), account.groups.end(), file.st_gid) != account.groups.end();
    return (file.st_mode >> (is_member ? k_group : 0U) & right) != 0;
}

// The mode says less than the list does.
bool has_list(std::string const& path) {
    return ::getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
}

std::string rights_text(struct stat const& file) {
    constexpr mode_t k_bits = 07777;
    std::array<char, 16> mode{};
    std::snprintf(mode.data(), mode.size(), "%04o", static_cast<unsigned>(file.st_mode & k_bits));
    auto const* const user = ::getpwuid(file.st_uid);
    auto const owner = user == nullptr ? std::to_string(file.st_uid) : std::string(user->pw_name);
    auto const* const group = ::getgrgid(file.st_gid);
    return " (" + std::string(mode.data()) + ' ' + owner + ' ' +
           (group == nullptr ? std::to_string(file.st_gid) : std::string(group->gr_name)) + ')';
}

bool has_line_for(std::string const& path, fs::path const& file) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string type;
        std::string pattern;
        if (words >> type >> pattern && type.front() != '#' && ::fnmatch(pattern.c_str(), path.c_str(), 0) == 0) {
            return true;
        }
    }
    return false;
}

// The unit has the rights set at each start, and a line says which.
bool is_set_at_the_start(std::string const& path, Unit const& unit) {
    bool const is_asked_for = std::any_of(unit.prefixes.begin(), unit.prefixes.end(),
                                          [&path](auto const& prefix) { return path.rfind(prefix, 0) == 0; });
    for (auto const* const folder : {"/etc/tmpfiles.d", "/run/tmpfiles.d", "/usr/lib/tmpfiles.d"}) {
        std::error_code error;
        for (auto const& entry : fs::directory_iterator(folder, error)) {
            if (is_asked_for && entry.path().extension() == ".conf" && has_line_for(path, entry.path())) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

std::string missing_right(std::string const& path, Unit const& unit) {
    auto const account = account_of(unit);
    if (!account || is_set_at_the_start(path, unit)) {
        return {};
    }
    auto const who = unit.user + ", the user of " + unit.name + ", may not ";
    struct stat about {};
    fs::path folder;
    for (auto const& part : fs::path(path).parent_path()) {
        folder /= part;
        if (::stat(folder.c_str(), &about) != 0 || has_list(folder.string())) {
            return {};
        }
        if (!may(*account, about, k_enter)) {
            return who + "enter " + folder.string() + rights_text(about);
        }
    }
    if (::stat(path.c_str(), &about) != 0 || has_list(path) || may(*account, about, k_write)) {
        return {};
    }
    auto const group = unit.groups.empty() ? unit.user : unit.groups.front();
    return who + "write into it" + rights_text(about) + ": put into /etc/tmpfiles.d/hypervisor.conf z " + path +
           " 0660 root " + group + " -";
}

}  // namespace statectl::check_config
