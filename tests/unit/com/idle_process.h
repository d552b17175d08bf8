#ifndef TESTS_UNIT_COM_IDLE_PROCESS_H
#define TESTS_UNIT_COM_IDLE_PROCESS_H

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace com_unit {

/// A process that does nothing until it is killed; killed and awaited at the latest with this object.
class Idle_process {
 public:
    Idle_process() : id_(::fork()) {
        if (id_ == 0) {
            for (;;) {
                ::pause();
            }
        }
    }
    ~Idle_process() { end(); }
    Idle_process(Idle_process const&) = delete;
    Idle_process& operator=(Idle_process const&) = delete;

    pid_t id() const { return id_; }
    void kill() const { ::kill(id_, SIGKILL); }
    /// From then on there is no such process.
    void end() {
        if (!ended_) {
            kill();
            ::waitpid(id_, nullptr, 0);
            ended_ = true;
        }
    }

 private:
    pid_t id_;
    bool ended_{false};
};

}  // namespace com_unit

#endif
