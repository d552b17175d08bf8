#ifndef ARA_COM_DDS_THREADS_STARTED_THREAD_H
#define ARA_COM_DDS_THREADS_STARTED_THREAD_H

#include "ara/com/dds/threads/lasting_failure.h"
#include "tarq/com/exception.h"

#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace ara::com::dds {

/// A thread of the binding. Throws `tarq::com::Infrastructure_exception` when there is none to be had.
template <class Run>
std::thread started_thread(Run&& run) {
    try {
        return std::thread(std::forward<Run>(run));
    } catch (std::system_error const& error) {
        throw tarq::com::Infrastructure_exception(std::string("There can be no thread: ") + error.what());
    }
}

/// Starts a thread without which nothing of the binding works. While there is none to be had that is tried again, twice
/// a second, and the caller waits.
template <class Start>
void start_with_patience(Start const& start) {
    constexpr std::chrono::milliseconds k_pause{500};
    Lasting_failure failure("The communication waits: ",
                            "The communication has the thread that it waited for; failures before: ");
    for (;;) {
        try {
            start();
            failure.succeeded();
            return;
        } catch (tarq::com::Infrastructure_exception const& error) {
            failure.failed(error);
        }
        std::this_thread::sleep_for(k_pause);
    }
}

}  // namespace ara::com::dds

#endif
