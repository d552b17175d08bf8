#ifndef SERVICES_FOUND_INSTANCE_H
#define SERVICES_FOUND_INSTANCE_H

#include "ara/com/find_service.h"
#include "base/mutex.h"
#include "tarq/com/exception.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace services {

/// One instance of a service, looked up for as long as this lives:
///
///     Found_instance<StateManagementAliveInterfaceProxy> instance("1");
///     if (auto const proxy = instance.await(std::chrono::seconds(2))) {
///         proxy->RequestAlive().get();
///     }
///
/// The proxy is made when the instance is offered for the first time, and is kept: it serves again with a new offer.
/// May be used by any thread.
template <class Proxy>
class Found_instance {
 public:
    /// Is told on a thread of the binding whenever the offer comes, with the way to it, and whenever it goes, with
    /// null.
    using On_change = std::function<void(std::shared_ptr<Proxy> const& way)>;

    /// "*" is any instance: the first one that is found. Throws `tarq::com::Infrastructure_exception`, and
    /// `tarq::com::Invalid_argument_exception` for a name that is none.
    explicit Found_instance(std::string const& name, On_change on_change = {})
        : on_change_(std::move(on_change)),
          lookup_(Proxy::StartFindService([this](ara::com::ServiceHandleContainer const& found) { follow(found); },
                                          ara::com::InstanceSpecifier(name))) {}
    ~Found_instance() { Proxy::StopFindService(lookup_); }
    Found_instance(Found_instance const&) = delete;
    Found_instance& operator=(Found_instance const&) = delete;

    /// The way to the instance; null when it is not offered, nor comes to be within the time. Throws
    /// `tarq::com::Infrastructure_exception` when it is offered, but not to this process.
    std::shared_ptr<Proxy> await(std::chrono::milliseconds limit) {
        auto const end = std::chrono::steady_clock::now() + limit;
        base::Lock_guard const lock(mutex_);
        while (!offered_ && !refusal_ && changed_.wait_until(mutex_, end) == std::cv_status::no_timeout) {
        }
        if (refusal_) {
            std::rethrow_exception(refusal_);
        }
        return offered_ ? proxy_ : nullptr;
    }

 private:
    void follow(ara::com::ServiceHandleContainer const& found) {
        std::shared_ptr<Proxy> way;
        bool was_offered = false;
        {
            base::Lock_guard const lock(mutex_);
            if (!found.empty() && !proxy_) {
                make_proxy(found.front());
            }
            was_offered = std::exchange(offered_, !found.empty() && proxy_);
            way = offered_ ? proxy_ : nullptr;
            changed_.notify_all();
        }
        if (on_change_ && was_offered != (way != nullptr)) {
            on_change_(way);
        }
    }

    void make_proxy(ara::com::ServiceHandle const& handle) REQUIRES(mutex_) {
        try {
            proxy_ = std::make_shared<Proxy>(handle);
            refusal_ = nullptr;
        } catch (tarq::com::Infrastructure_exception const&) {
            refusal_ = std::current_exception();
        }
    }

    On_change const on_change_;
    base::Mutex mutex_;
    std::condition_variable_any changed_;
    std::shared_ptr<Proxy> proxy_ GUARDED_BY(mutex_);
    std::exception_ptr refusal_ GUARDED_BY(mutex_);
    bool offered_ GUARDED_BY(mutex_){false};
    ara::com::FindServiceHandle lookup_;
};

}  // namespace services

#endif
