#include "bench/task_queue/task_queue.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace bench {

Task_queue::Task_queue() : descriptor_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

Task_queue::~Task_queue() {
    ::close(descriptor_);
}

void Task_queue::post(Task task) {
    base::Lock_guard const lock(mutex_);
    if (!closed_) {
        waiting_.push_back(std::move(task));
        static_cast<void>(::eventfd_write(descriptor_, 1));
    }
}

void Task_queue::run_all() {
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(descriptor_, &count));
    std::vector<Task> tasks;
    {
        base::Lock_guard const lock(mutex_);
        tasks.swap(waiting_);
    }
    for (auto const& task : tasks) {
        task();
    }
}

// What a task holds may do anything when it goes, so the mutex is free by then.
void Task_queue::close() {
    std::vector<Task> tasks;
    base::Lock_guard const lock(mutex_);  // goes before the tasks do
    closed_ = true;
    tasks.swap(waiting_);
}

void Task_queue::open() {
    base::Lock_guard const lock(mutex_);
    closed_ = false;
}

}  // namespace bench
