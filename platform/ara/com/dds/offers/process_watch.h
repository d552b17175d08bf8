#ifndef ARA_COM_DDS_OFFERS_PROCESS_WATCH_H
#define ARA_COM_DDS_OFFERS_PROCESS_WATCH_H

#include "base/mutex.h"

#include <functional>
#include <map>
#include <thread>

#include <sys/types.h>

namespace ara::com::dds {

/// Tells within a millisecond when a process of this machine has ended, however it ended. Its thread begins with the
/// first process that is watched. Thread-safe.
class Process_watch {
 public:
    /// Called on the watch's own thread, once for each process; must neither throw nor block.
    using Ended = std::function<void(pid_t process)>;

    explicit Process_watch(Ended ended) : ended_(std::move(ended)) {}
    ~Process_watch();
    Process_watch(Process_watch const&) = delete;
    Process_watch& operator=(Process_watch const&) = delete;

    /// Watches until the process ends; false when it has ended already. Where the system doesn't let it be watched the
    /// result is true and nothing is told.
    bool watch(pid_t process);

 private:
    bool start() REQUIRES(mutex_);
    void run();
    void forget(pid_t process);

    Ended const ended_;
    base::Mutex mutex_;
    std::map<pid_t, int> watched_ GUARDED_BY(mutex_);  // with its descriptor
    int events_{-1};                                   // epoll; written before the thread starts
    int stop_{-1};                                     // eventfd
    std::thread thread_;
};

}  // namespace ara::com::dds

#endif
