#ifndef ARA_COM_DDS_THREADS_STARTED_THREAD_H
#define ARA_COM_DDS_THREADS_STARTED_THREAD_H

#include "tarq/com/exception.h"

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

}  // namespace ara::com::dds

#endif
