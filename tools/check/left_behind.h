#ifndef TOOLS_CHECK_LEFT_BEHIND_H
#define TOOLS_CHECK_LEFT_BEHIND_H

#include <csignal>
#include <string>

#include <sys/types.h>

namespace statectl::check {

/// What would stay behind when a signal ends this program: the program that is looked at, which has a process group of
/// its own, and the directory with the socket. From now on SIGHUP, SIGINT, SIGQUIT and SIGTERM remove both and then
/// end this program as they always do; one that is ignored stays ignored. For one directory at a time.
void remove_at_signals(std::string const& directory, std::string const& socket_path);

/// Holds these signals back while it lives: a program that is being started is not known yet, and one that was waited
/// for is not there any more.
class Signals_held {
 public:
    Signals_held();
    ~Signals_held();
    Signals_held(Signals_held const&) = delete;
    Signals_held& operator=(Signals_held const&) = delete;

 private:
    sigset_t before_{};
};

/// The process group to be ended; 0 for none.
void set_running_program(pid_t group);

/// For the child that becomes the program: signals do what they usually do.
void forget_what_is_left_behind();

}  // namespace statectl::check

#endif
