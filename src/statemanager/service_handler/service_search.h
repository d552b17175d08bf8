#ifndef STATEMANAGER_SERVICE_HANDLER_SERVICE_SEARCH_H
#define STATEMANAGER_SERVICE_HANDLER_SERVICE_SEARCH_H

#include "ara/com/find_service.h"
#include "ara/com/instance.h"
#include "ara/log/logging.h"
#include "base/mutex.h"

#include <memory>
#include <optional>
#include <utility>

namespace ximo::ap::statemanager {

/// The search for any instance of one service, and the proxy that came of it.
///
/// not searched --start()--> searching --hold(), stop()--> found. Any thread may call; the handler of the lookup may
/// run, and stop the search, before `start()` has returned.
template <class Proxy>
class Service_search {
 public:
    /// `stopping` is logged when a running lookup is stopped.
    explicit Service_search(char const* stopping) : stopping_(stopping) {}

    /// Starts the lookup. Throws `tarq::com::Infrastructure_exception`.
    void start(ara::com::FindServiceHandler handler) {
        set_starting(true);
        try {
            keep(Proxy::StartFindService(std::move(handler), ara::com::InstanceSpecifier("*")));
        } catch (...) {
            set_starting(false);
            throw;
        }
    }

    /// Stops the lookup; does nothing when none runs. Afterwards the handler is not running, unless it is the caller.
    void stop() {
        if (auto const handle = take_handle()) {
            stop(*handle);
        }
    }

    /// Keeps a proxy; the one before goes as soon as nobody calls through it.
    void hold(std::shared_ptr<Proxy> proxy) {
        base::Lock_guard const lock(mutex_);
        proxy_.swap(proxy);
    }

    /// Null until the service was found.
    std::shared_ptr<Proxy> proxy() const {
        base::Lock_guard const lock(mutex_);
        return proxy_;
    }

 private:
    using Handle = ara::com::FindServiceHandle;

    void set_starting(bool starting) {
        base::Lock_guard const lock(mutex_);
        starting_ = starting;
        stopped_early_ = false;
    }

    void keep(Handle handle) {
        if (!store(handle)) {
            stop(handle);
        }
    }

    // False when the handler has stopped the search already.
    bool store(Handle const& handle) {
        base::Lock_guard const lock(mutex_);
        starting_ = false;
        if (!stopped_early_) {
            handle_ = handle;
        }
        return !stopped_early_;
    }

    std::optional<Handle> take_handle() {
        base::Lock_guard const lock(mutex_);
        stopped_early_ = starting_;
        return std::exchange(handle_, std::nullopt);
    }

    void stop(Handle const& handle) {
        ara::log::LogInfo() << stopping_;
        Proxy::StopFindService(handle);
    }

    char const* const stopping_;
    mutable base::Mutex mutex_;
    bool starting_ GUARDED_BY(mutex_){false};
    bool stopped_early_ GUARDED_BY(mutex_){false};
    std::optional<Handle> handle_ GUARDED_BY(mutex_);
    std::shared_ptr<Proxy> proxy_ GUARDED_BY(mutex_);
};

}  // namespace ximo::ap::statemanager

#endif
