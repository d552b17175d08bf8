#include "ara/com/dds/threads/strand.h"

#include "ara/com/dds/threads/workers.h"
#include "ara/log/logging.h"

#include <exception>
#include <utility>

namespace ara::com::dds {

namespace {

void run_logged(Strand::Task const& task) {
    try {
        task();
    } catch (std::exception const& error) {
        ara::log::LogError() << "A handler of the communication threw " << error.what();
    } catch (...) {
        ara::log::LogError() << "A handler of the communication threw "
                             << "something that is not an exception";
    }
}

}  // namespace

void Strand::post(Task task) {
    {
        base::Lock_guard const lock(mutex_);
        if (closed_) {
            return;
        }
        tasks_.push_back(std::move(task));
        if (scheduled_) {
            return;
        }
        scheduled_ = true;
    }
    try {
        workers_.run(shared_from_this());
    } catch (...) {
        base::Lock_guard const lock(mutex_);
        scheduled_ = false;  // the next task brings this one along
        throw;
    }
}

// As if the workers had been told when the first task was posted.
void Strand::begin() {
    workers_.run(shared_from_this());
}

// Needs no memory, so that whatever ends can close its strand.
void Strand::refuse() {
    while (auto const dropped = refuse_one()) {
        // what the task holds goes with it, and may close this strand
    }
}

Strand::Task Strand::refuse_one() {
    base::Lock_guard const lock(mutex_);
    closed_ = true;
    return take_first();
}

void Strand::close() {
    refuse();
    base::Lock_guard const lock(mutex_);
    while (runner_ != std::thread::id() && runner_ != std::this_thread::get_id()) {
        ended_.wait(mutex_);
    }
}

void Strand::run() {
    while (auto task = next()) {
        run_logged(task);
        // What the task holds may go with it, and may close this strand.
        task = nullptr;
    }
}

Strand::Task Strand::next() {
    base::Lock_guard const lock(mutex_);
    runner_ = {};
    ended_.notify_all();
    if (closed_ || tasks_.empty()) {
        scheduled_ = false;
        return nullptr;
    }
    runner_ = std::this_thread::get_id();
    return take_first();
}

Strand::Task Strand::take_first() {
    if (tasks_.empty()) {
        return nullptr;
    }
    auto task = std::move(tasks_.front());
    tasks_.pop_front();
    return task;
}

}  // namespace ara::com::dds
