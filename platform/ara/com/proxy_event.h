#ifndef ARA_COM_PROXY_EVENT_H
#define ARA_COM_PROXY_EVENT_H

#include "ara/com/binding.h"
#include "ara/com/running_handlers.h"
#include "base/mutex.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace ara::com {

/// An event, or the notifier of a field, as a client sees it: `Subscribe` with a cache of some samples, then for each
/// sample that arrives the receive handler is called on a thread of the binding; it calls `Update` and reads the cache.
/// One sample is made available for each call of the handler, so that none is lost and none is seen twice.
/// A subscription outlives the instance's withdrawal and gets samples again after a new offer.
template <class Value>
class Proxy_event {
 public:
    using Decode = Value (*)(void const* sample);
    using Samples = std::vector<std::shared_ptr<Value const>>;

    Proxy_event(std::shared_ptr<Connection> connection, Event_type const& type, Decode decode)
        : connection_(std::move(connection)), type_(type), decode_(decode) {}
    ~Proxy_event() { Unsubscribe(); }
    Proxy_event(Proxy_event const&) = delete;
    Proxy_event& operator=(Proxy_event const&) = delete;

    /// Keeps the newest `cache` samples, at least one. A subscription that exists is left as it is. Throws
    /// `tarq::com::Infrastructure_exception`.
    void Subscribe(std::size_t cache);

    /// Ends the subscription and waits for the receive handler that runs, except when it is the caller. Waits also when
    /// the subscription was ended already. The cache stays.
    void Unsubscribe();

    /// The handler for samples that arrive from now on; an empty function for none.
    void SetReceiveHandler(std::function<void()> handler);

    /// Empties the cache and fills it with what arrived since the last call, the newest samples first to stay. Returns
    /// whether there was any.
    bool Update();

    /// What the last `Update` fetched, oldest first. One thread at a time uses `Update` and the cache.
    Samples const& GetCachedSamples() const noexcept { return cached_; }

 private:
    void keep(void const* sample);
    std::unique_ptr<Subscription> take_subscription();

    std::shared_ptr<Connection> const connection_;
    Event_type const& type_;
    Decode const decode_;
    base::Mutex mutex_;
    std::size_t capacity_ GUARDED_BY(mutex_){1};
    std::deque<std::shared_ptr<Value const>> arrived_ GUARDED_BY(mutex_);
    std::function<void()> handler_ GUARDED_BY(mutex_);
    Running_handlers handlers_;
    base::Recursive_mutex subscription_mutex_;  // taken before mutex_
    std::unique_ptr<Subscription> subscription_ GUARDED_BY(subscription_mutex_);
    Samples cached_;
};

template <class Value>
void Proxy_event<Value>::Subscribe(std::size_t cache) {
    base::Lock_guard const subscribing(subscription_mutex_);
    if (subscription_) {
        return;
    }
    {
        base::Lock_guard const lock(mutex_);
        capacity_ = cache == 0 ? 1 : cache;
    }
    subscription_ = connection_->subscribe(type_, [this](void const* sample) { handlers_.run([&] { keep(sample); }); });
}

template <class Value>
std::unique_ptr<Subscription> Proxy_event<Value>::take_subscription() {
    base::Lock_guard const subscribing(subscription_mutex_);
    return std::move(subscription_);
}

// The handler that is waited for may use this object, so the mutex is free meanwhile.
template <class Value>
void Proxy_event<Value>::Unsubscribe() {
    handlers_.end([this] { take_subscription().reset(); });
}

template <class Value>
void Proxy_event<Value>::SetReceiveHandler(std::function<void()> handler) {
    base::Lock_guard const lock(mutex_);
    handler_ = std::move(handler);
}

template <class Value>
bool Proxy_event<Value>::Update() {
    base::Lock_guard const lock(mutex_);
    cached_.assign(arrived_.begin(), arrived_.end());
    arrived_.clear();
    return !cached_.empty();
}

template <class Value>
void Proxy_event<Value>::keep(void const* sample) {
    auto value = std::make_shared<Value const>(decode_(sample));
    std::function<void()> handler;
    {
        base::Lock_guard const lock(mutex_);
        arrived_.push_back(std::move(value));
        if (arrived_.size() > capacity_) {
            arrived_.pop_front();
        }
        handler = handler_;
    }
    if (handler) {
        handler();
    }
}

}  // namespace ara::com

#endif
