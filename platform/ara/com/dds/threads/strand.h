#ifndef ARA_COM_DDS_THREADS_STRAND_H
#define ARA_COM_DDS_THREADS_STRAND_H

#include "base/condition.h"
#include "base/mutex.h"

#include <deque>
#include <functional>
#include <memory>
#include <thread>

namespace ara::com::dds {

class Workers;

/// Runs tasks one after the other, in order, on threads of the binding. An exception that leaves a task is logged.
/// Made with `std::make_shared`.
class Strand : public std::enable_shared_from_this<Strand> {
 public:
    using Task = std::function<void()>;

    /// When the first task may begin.
    enum class Beginning { k_at_once, k_when_told };

    /// The workers outlive the strand's use.
    explicit Strand(Workers& workers, Beginning beginning = Beginning::k_at_once)
        : workers_(workers), scheduled_(beginning == Beginning::k_when_told) {}

    /// Lets the tasks begin of a strand that waits for it. Once.
    void begin();

    /// Any thread; does not block. Does nothing once the strand is closed.
    void post(Task task);

    /// Drops the tasks that did not begin; none begins from now on.
    void refuse();

    /// Drops the tasks that did not begin and waits for the one that runs, unless it is the caller. May be repeated.
    void close();

    /// For the workers.
    void run();

 private:
    Task next();
    Task refuse_one();
    Task take_first() REQUIRES(mutex_);

    Workers& workers_;
    base::Mutex mutex_;
    base::Condition ended_;
    std::deque<Task> tasks_ GUARDED_BY(mutex_);
    bool scheduled_ GUARDED_BY(mutex_);
    bool closed_ GUARDED_BY(mutex_){false};
    std::thread::id runner_ GUARDED_BY(mutex_);  // of the task that runs; no thread's while none does
};

}  // namespace ara::com::dds

#endif
