#ifndef ARA_COM_PROXY_FIELD_H
#define ARA_COM_PROXY_FIELD_H

#include "ara/com/proxy_event.h"
#include "ximo/com/future.h"

#include <functional>
#include <memory>
#include <utility>

namespace ara::com {

/// A field as a client sees it: its notifier, and its getter.
template <class Value>
class Proxy_field : public Proxy_event<Value> {
 public:
    using Getter = std::function<ximo::com::Future<Value>()>;

    Proxy_field(std::shared_ptr<Connection> connection, Event_type const& type,
                typename Proxy_event<Value>::Decode decode, Getter getter)
        : Proxy_event<Value>(std::move(connection), type, decode), getter_(std::move(getter)) {}

    // The receive handler may ask for the value to the last.
    ~Proxy_field() { this->Unsubscribe(); }
    Proxy_field(Proxy_field const&) = delete;
    Proxy_field& operator=(Proxy_field const&) = delete;

    /// Asks the instance for the value; fails as any call does.
    ximo::com::Future<Value> Get() { return getter_(); }

    /// The notifier by its name in the descriptions of interfaces; the field is its notifier.
    Proxy_event<Value>& Notify{*this};

 private:
    Getter const getter_;
};

}  // namespace ara::com

#endif
