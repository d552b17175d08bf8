#ifndef BENCH_TASK_QUEUE_TASK_QUEUE_H
#define BENCH_TASK_QUEUE_TASK_QUEUE_H

#include "base/mutex.h"

#include <functional>
#include <vector>

namespace bench {

/// Work that other threads hand to the thread of an event loop:
///
///     loop.watch(queue.descriptor(), [&] { queue.run_all(); });
///     queue.post([] { ... });   // on any thread
///
/// Work that is never done is destroyed with the queue or by `close`.
class Task_queue {
 public:
    using Task = std::function<void()>;

    /// Throws `std::system_error`.
    Task_queue();
    ~Task_queue();
    Task_queue(Task_queue const&) = delete;
    Task_queue& operator=(Task_queue const&) = delete;

    void post(Task task);

    /// Does what waits, in the order in which it was posted.
    void run_all();

    /// What waits is thrown away, and whatever is posted until `open`.
    void close();
    void open();

    /// Can be read while work waits.
    int descriptor() const { return descriptor_; }

 private:
    int const descriptor_;
    base::Mutex mutex_;
    std::vector<Task> waiting_ GUARDED_BY(mutex_);
    bool closed_ GUARDED_BY(mutex_) = false;
};

}  // namespace bench

#endif
