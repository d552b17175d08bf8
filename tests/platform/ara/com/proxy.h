#ifndef ARA_COM_PROXY_H
#define ARA_COM_PROXY_H

#include "ara/com/skeleton.h"
#include "tarq/com/exception.h"
#include "ximo/com/future.h"

#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace ara::com {

/// Base of the proxies of the interface of `Service`, a skeleton. A call runs the method of who offers the instance
/// just then.
template <class Service>
class Proxy {
 public:
    using HandleType = ServiceHandle;

    static FindServiceHandle StartFindService(FindServiceHandler handler, InstanceSpecifier const& wanted) {
        return FindServiceHandle(Hub::instance().find({Service::k_interface, wanted, std::move(handler)}));
    }
    static void StopFindService(FindServiceHandle const& handle) { handle.lookup()->is_stopped = true; }

    explicit Proxy(HandleType const& handle) : instance_(handle.GetInstanceId().ToString()) {}
    Proxy(Proxy const&) = delete;
    Proxy& operator=(Proxy const&) = delete;

 protected:
    ~Proxy() = default;

    /// The way of one of the interface's events.
    Channel& channel(char const* event) const {
        return Hub::instance().channel(Service::k_interface, instance_, event);
    }

    template <class Method, class... Arguments>
    auto call(Method method, Arguments const&... arguments) const {
        using Answer = std::invoke_result_t<Method, Service&, Arguments const&...>;
        using Value = decltype(std::declval<Answer>().get());
        ximo::com::Promise<Value> failed;
        auto* const service = dynamic_cast<Service*>(Hub::instance().offered(Service::k_interface, instance_));
        if (service != nullptr) {
            try {
                return std::invoke(method, *service, arguments...);
            } catch (std::exception const& error) {
                failed.set_exception(std::make_exception_ptr(tarq::com::Infrastructure_exception(error.what())));
            }
        } else {
            failed.set_exception(std::make_exception_ptr(tarq::com::Service_not_available_exception()));
        }
        return failed.get_future();
    }

 private:
    std::string const instance_;
};

/// The receiving end of an event, or of a field's notifications.
class Proxy_event {
 public:
    using Samples = std::vector<std::shared_ptr<Octets const>>;

    explicit Proxy_event(Channel& channel) : channel_(channel) {}
    ~Proxy_event() { Unsubscribe(); }
    Proxy_event(Proxy_event const&) = delete;
    Proxy_event& operator=(Proxy_event const&) = delete;

    void Subscribe(std::size_t cache);
    void Unsubscribe();
    void SetReceiveHandler(std::function<void()> handler) { handler_ = std::move(handler); }

    /// Fills the cache with what came since the last call; whether there was any.
    bool Update();
    Samples const& GetCachedSamples() const noexcept { return cached_; }

 protected:
    Channel& channel_;

 private:
    void receive(Octets const& value);

    bool is_subscribed_{false};
    std::list<std::function<void(Octets const&)>>::iterator subscriber_;
    std::size_t capacity_{1};
    std::deque<std::shared_ptr<Octets const>> arrived_;
    std::function<void()> handler_;
    Samples cached_;
};

/// A field as a client sees it.
class Proxy_field : public Proxy_event {
 public:
    using Proxy_event::Proxy_event;

    ximo::com::Future<Octets> Get() const;
    Proxy_event& Notify{*this};
};

}  // namespace ara::com

#endif
