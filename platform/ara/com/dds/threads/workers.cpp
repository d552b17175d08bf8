#include "ara/com/dds/threads/workers.h"

#include "ara/com/dds/threads/started_thread.h"
#include "ara/com/dds/threads/strand.h"
#include "tarq/com/exception.h"

#include <new>
#include <utility>

#include <pthread.h>

namespace ara::com::dds {

Workers::Workers() {
    start_with_patience([this] {
        base::Lock_guard const lock(mutex_);
        start_thread();
    });
}

void Workers::start_thread() {
    auto& thread = threads_.emplace_back();  // its place first: a thread that runs can't go
    try {
        thread = started_thread([this] { work(); });
    } catch (...) {
        threads_.pop_back();
        throw;
    }
    ++idle_;
}

void Workers::run(std::shared_ptr<Strand> strand) {
    {
        base::Lock_guard const lock(mutex_);
        if (stopped_) {
            return;
        }
        waiting_.push_back(std::move(strand));
        if (waiting_.size() > idle_) {
            start_one_more();
        }
    }
    ready_.notify_one();
}

void Workers::start_one_more() {
    try {
        start_thread();
    } catch (tarq::com::Infrastructure_exception const&) {
        // A thread that is busy now takes the strand later.
    } catch (std::bad_alloc const&) {
        // The same.
    }
}

void Workers::work() {
    pthread_setname_np(pthread_self(), "com-worker");
    for (auto strand = first(); strand; strand = next()) {
        strand->run();
        strand.reset();
    }
}

// A thread is idle from its start on.
std::shared_ptr<Strand> Workers::first() {
    base::Lock_guard const lock(mutex_);
    return await_strand();
}

std::shared_ptr<Strand> Workers::next() {
    base::Lock_guard const lock(mutex_);
    ++idle_;
    return await_strand();
}

std::shared_ptr<Strand> Workers::await_strand() {
    while (waiting_.empty() && !stopped_) {
        ready_.wait(mutex_);
    }
    --idle_;
    if (stopped_) {
        return nullptr;
    }
    auto strand = std::move(waiting_.front());
    waiting_.pop_front();
    return strand;
}

void Workers::stop() {
    std::vector<std::thread> threads;
    {
        base::Lock_guard const lock(mutex_);
        stopped_ = true;
        waiting_.clear();
        threads = std::move(threads_);
        threads_.clear();
    }
    ready_.notify_all();
    for (auto& thread : threads) {
        thread.join();
    }
}

}  // namespace ara::com::dds
