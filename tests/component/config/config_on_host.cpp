// config_on_host NAME FOLDER: chooses and parses the configuration on a machine of that name whose /etc/adaptive is the
// folder, in namespaces of its own, and prints what came of it, one word and its value a line. Exit status 77 when this
// machine does not allow such namespaces, with the reason on stderr.
#include "statemanager/config/config_chooser.h"
#include "statemanager/config/state_manager_json_parser.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using ximo::ap::statemanager::config::Config_chooser;
using ximo::ap::statemanager::config::State_manager_config;
using ximo::ap::statemanager::config::State_manager_json_parser;

constexpr int k_not_allowed = 77;

void require(bool done, char const* what) {
    if (!done) {
        std::cerr << "This machine does not allow it: " << what << ": " << std::strerror(errno) << '\n';
        std::exit(k_not_allowed);
    }
}

// An ordinary user is root in a user namespace, which is allowed all that follows.
void become_root(uid_t user, gid_t group) {
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

void leave_for_own_namespaces() {
    auto const user = ::geteuid();
    auto const group = ::getegid();
    if (user == 0) {
        require(::unshare(CLONE_NEWUTS | CLONE_NEWNS) == 0, "own UTS and mount namespaces");
        return;
    }
    require(::unshare(CLONE_NEWUSER | CLONE_NEWUTS | CLONE_NEWNS) == 0, "own user, UTS and mount namespaces");
    become_root(user, group);
}

void put_over_etc_adaptive(char const* folder) {
    require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
    require(::mount("tmpfs", "/etc", "tmpfs", 0, nullptr) == 0, "a file system over /etc");
    require(::mkdir("/etc/adaptive", 0755) == 0, "a folder /etc/adaptive");
    require(::mount(folder, "/etc/adaptive", nullptr, MS_BIND, nullptr) == 0, "a folder over /etc/adaptive");
}

int report() {
    Config_chooser const chooser;
    State_manager_config config;
    auto const parsed = State_manager_json_parser::parse(chooser.get_config_path(), config);
    std::cout << std::boolalpha << "good " << chooser.good() << "\npath " << chooser.get_config_path() << "\nparsed "
              << parsed << "\nsupervision " << config.get_alive_supervision_instance_id() << '\n';
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 3) {
        std::cerr << "usage: config_on_host NAME FOLDER\n";
        return EXIT_FAILURE;
    }
    leave_for_own_namespaces();
    require(::sethostname(argv[1], std::strlen(argv[1])) == 0, "a host name of its own");
    put_over_etc_adaptive(argv[2]);
    return report();
}
