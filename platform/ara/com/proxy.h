#ifndef ARA_COM_PROXY_H
#define ARA_COM_PROXY_H

#include "ara/com/binding.h"
#include "ara/com/find_service.h"
#include "ara/com/named_lookup.h"

#include <memory>
#include <utility>

namespace ara::com {

/// Base of a client's proxies: the lookup of its interface, and the way to the instance of a handle.
///
/// A proxy outlives its instance's withdrawal: calls fail meanwhile, and work again once the same instance is offered
/// again. A call takes at most the time of its interface until its future is ready, connecting with the instance
/// included.
template <Service_type const& k_type>
class Proxy {
 public:
    using HandleType = ServiceHandle;

    /// Starts a lookup that reports to the handler until it is stopped. Throws `tarq::com::Infrastructure_exception`.
    static FindServiceHandle StartFindService(FindServiceHandler handler, InstanceSpecifier const& wanted) {
        return FindServiceHandle(binding()->find(k_type, wanted, std::move(handler)));
    }

    static FindServiceHandle StartFindService(FindServiceHandlerWithHandle handler, InstanceSpecifier const& wanted) {
        auto const name = std::make_shared<Named_lookup>();
        auto const lookup =
            StartFindService(FindServiceHandler([name, handler = std::move(handler)](ServiceHandleContainer found) {
                                 if (!name->is_stopped()) {
                                     handler(std::move(found), FindServiceHandle(name));
                                 }
                             }),
                             wanted);
        name->name(lookup.lookup());
        return lookup;
    }

    /// Ends a lookup and waits for its report that runs, except when that is the caller. May be repeated.
    static void StopFindService(FindServiceHandle const& handle) { handle.lookup()->stop(); }

    /// Throws `tarq::com::Infrastructure_exception`; not for an instance that has gone: then its calls fail.
    explicit Proxy(HandleType const& handle) : connection_(binding()->connect(k_type, handle)) {}
    Proxy(Proxy const&) = delete;
    Proxy& operator=(Proxy const&) = delete;

 protected:
    ~Proxy() = default;
    std::shared_ptr<Connection> const& connection() const noexcept { return connection_; }

 private:
    std::shared_ptr<Connection> const connection_;
};

}  // namespace ara::com

#endif
