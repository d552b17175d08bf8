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
/// run, and stop the search, before `start()` has returned. The lookup's handle is kept beyond its end, so that whoever
/// stops it again can wait for the handler as well.
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

    /// Stops the lookup when one runs. Afterwards the handler is not running, unless it is the caller.
    void stop() {
        bool runs = false;
        if (auto const handle = stopped_handle(runs)) {
            stop(*handle, runs);
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
            stop(handle, true);
        }
    }

    // False when the handler has stopped the search already.
    bool store(Handle const& handle) {
        base::Lock_guard const lock(mutex_);
        starting_ = false;
        handle_ = handle;
        runs_ = !stopped_early_;
        return runs_;
    }

    std::optional<Handle> stopped_handle(bool& runs) {
        base::Lock_guard const lock(mutex_);
        stopped_early_ = starting_;
        runs = std::exchange(runs_, false);
        return handle_;
    }

    void stop(Handle const& handle, bool runs) {
        if (runs) {
            ara::log::LogInfo() << stopping_;
        }
        Proxy::StopFindService(handle);
    }

    char const* const stopping_;
    mutable base::Mutex mutex_;
    bool starting_ GUARDED_BY(mutex_){false};
    bool stopped_early_ GUARDED_BY(mutex_){false};
    std::optional<Handle> handle_ GUARDED_BY(mutex_);
    bool runs_ GUARDED_BY(mutex_){false};
    std::shared_ptr<Proxy> proxy_ GUARDED_BY(mutex_);
};

}  // namespace ximo::ap::statemanager

#endif
