#include "ara/com/hub.h"
#include "ara/com/proxy.h"
#include "ara/com/skeleton.h"
#include "tarq/com/exception.h"
#include "told/told.h"

#include <algorithm>

namespace ara::com {

InstanceIdentifier::InstanceIdentifier(std::string_view name) : name_(name) {
    if (name_.empty()) {
        throw tarq::com::Invalid_argument_exception("An instance without a name");
    }
}

Hub& Hub::instance() {
    static auto& hub = *new Hub;
    return hub;
}

void Hub::offer(Skeleton& skeleton) {
    offers_[{skeleton.interface(), skeleton.instance()}] = &skeleton;
    report(skeleton.interface());
}

void Hub::withdraw(Skeleton const& skeleton) {
    offers_.erase({skeleton.interface(), skeleton.instance()});
    report(skeleton.interface());
}

Skeleton* Hub::offered(std::string const& interface, std::string const& instance) const {
    auto const found = offers_.find({interface, instance});
    return found != offers_.end() ? found->second : nullptr;
}

std::shared_ptr<Lookup> Hub::find(Lookup lookup) {
    told::tell({"com", "find " + lookup.interface});
    auto const is_stopped = [](auto const& known) { return known->is_stopped; };
    lookups_.erase(std::remove_if(lookups_.begin(), lookups_.end(), is_stopped), lookups_.end());
    auto const kept = lookups_.emplace_back(std::make_shared<Lookup>(std::move(lookup)));
    report(*kept);
    return kept;
}

void Hub::report(std::string const& interface) {
    auto const lookups = lookups_;
    for (auto const& lookup : lookups) {
        if (lookup->interface == interface) {
            report(*lookup);
        }
    }
}

void Hub::report(Lookup const& lookup) const {
    ServiceHandleContainer handles;
    for (auto const& [key, skeleton] : offers_) {
        if (key.first == lookup.interface && lookup.wanted.matches(key.second)) {
            handles.emplace_back(InstanceIdentifier(key.second));
        }
    }
    if (!lookup.is_stopped) {
        lookup.handler(handles);
    }
}

Channel& Hub::channel(std::string const& interface, std::string const& instance, std::string const& event) {
    return channels_[interface + ' ' + instance + ' ' + event];
}

Skeleton::Skeleton(char const* interface, InstanceIdentifier const& instance, MethodCallProcessingMode mode)
    : interface_(interface), instance_(instance.ToString()) {
    if (mode != MethodCallProcessingMode::kEvent) {
        throw tarq::com::Invalid_argument_exception("Not a supported processing mode: only kEvent is");
    }
    told::tell({"com", "skeleton " + interface_ + ' ' + instance_});
}

void Skeleton::OfferService() {
    if (!is_offered_) {
        is_offered_ = true;
        told::tell({"com", "offer " + interface_ + ' ' + instance_});
        Hub::instance().offer(*this);
    }
}

void Skeleton::StopOfferService() {
    if (is_offered_) {
        is_offered_ = false;
        told::tell({"com", "withdraw " + interface_ + ' ' + instance_});
        Hub::instance().withdraw(*this);
    }
}

void Proxy_event::Subscribe(std::size_t cache) {
    if (is_subscribed_) {
        return;
    }
    is_subscribed_ = true;
    capacity_ = cache == 0 ? 1 : cache;
    subscriber_ =
        channel_.subscribers.insert(channel_.subscribers.end(), [this](Octets const& value) { receive(value); });
    if (channel_.newest) {
        receive(*channel_.newest);
    }
}

void Proxy_event::Unsubscribe() {
    if (is_subscribed_) {
        is_subscribed_ = false;
        channel_.subscribers.erase(subscriber_);
    }
}

bool Proxy_event::Update() {
    cached_.assign(arrived_.begin(), arrived_.end());
    arrived_.clear();
    return !cached_.empty();
}

void Proxy_event::receive(Octets const& value) {
    arrived_.push_back(std::make_shared<Octets const>(value));
    if (arrived_.size() > capacity_) {
        arrived_.pop_front();
    }
    if (handler_) {
        handler_();
    }
}

ximo::com::Future<Octets> Proxy_field::Get() const {
    ximo::com::Promise<Octets> value;
    value.set_value(channel_.newest.value_or(Octets()));
    return value.get_future();
}

}  // namespace ara::com
