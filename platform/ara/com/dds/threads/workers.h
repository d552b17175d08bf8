#ifndef ARA_COM_DDS_THREADS_WORKERS_H
#define ARA_COM_DDS_THREADS_WORKERS_H

#include "base/condition.h"
#include "base/mutex.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <thread>
#include <vector>

namespace ara::com::dds {

class Strand;

/// The threads of the binding on which user code runs. There are as many as strands have been busy at the same time;
/// an idle one is kept for the next.
class Workers {
 public:
    /// Waits until there is a first thread.
    Workers();
    ~Workers() { stop(); }
    Workers(Workers const&) = delete;
    Workers& operator=(Workers const&) = delete;

    /// Runs what is in the strand soon. Any thread; does not block.
    void run(std::shared_ptr<Strand> strand);

    /// Waits for what runs, drops the rest, ends the threads. Not for a worker's own thread.
    void stop();

 private:
    void start_thread() REQUIRES(mutex_);
    void start_one_more() REQUIRES(mutex_);
    void work();
    std::shared_ptr<Strand> first();
    std::shared_ptr<Strand> next();
    std::shared_ptr<Strand> await_strand() REQUIRES(mutex_);

    base::Mutex mutex_;
    base::Condition ready_;
    std::deque<std::shared_ptr<Strand>> waiting_ GUARDED_BY(mutex_);
    std::size_t idle_ GUARDED_BY(mutex_){0};  // those that were woken but did not yet take a strand included
    bool stopped_ GUARDED_BY(mutex_){false};
    std::vector<std::thread> threads_ GUARDED_BY(mutex_);
};

}  // namespace ara::com::dds

#endif
