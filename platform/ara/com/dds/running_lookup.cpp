#include "ara/com/dds/running_lookup.h"

#include "tarq/com/exception.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace ara::com::dds {

namespace {

constexpr std::chrono::milliseconds k_pause_after_failure{500};

bool is_same(Known_offer const& left, Known_offer const& right) {
    return key_of(left) == key_of(right);
}

// Others may offer names that can't be ours.
bool is_wanted(InstanceSpecifier const& wanted, std::string const& instance) {
    try {
        return wanted.matches(InstanceIdentifier(instance));
    } catch (tarq::com::Invalid_argument_exception const&) {
        return false;
    }
}

ServiceHandleContainer handles_of(std::vector<Known_offer> const& offers) {
    ServiceHandleContainer handles;
    for (auto const& offer : offers) {
        handles.emplace_back(offer.interface_name, InstanceIdentifier(offer.instance), to_text(offer.participant),
                             offer.since);
    }
    return handles;
}

}  // namespace

Running_lookup::Running_lookup(std::shared_ptr<Engine> engine, std::string interface_name, InstanceSpecifier wanted,
                               FindServiceHandler handler)
    : engine_(std::move(engine)),
      interface_(std::move(interface_name)),
      wanted_(std::move(wanted)),
      handler_(std::move(handler)),
      strand_(std::make_shared<Strand>(engine_->workers())) {}

void Running_lookup::start() {
    engine_->adopt(weak_from_this());
    {
        base::Lock_guard lock(mutex_);
        self_ = shared_from_this();
    }
    engine_->offers().add(weak_from_this());
}

void Running_lookup::close() {
    std::shared_ptr<Running_lookup> self;
    {
        base::Lock_guard lock(mutex_);
        self = std::move(self_);
    }
    strand_->close();
}

std::vector<Known_offer> Running_lookup::matching(Known_offer_list const& offers) const {
    std::vector<Known_offer> matching;
    std::copy_if(offers.begin(), offers.end(), std::back_inserter(matching), [this](auto const& offer) {
        return offer.interface_name == interface_ && is_wanted(wanted_, offer.instance);
    });
    return matching;
}

void Running_lookup::offers_changed(Known_offer_list const& offers) {
    auto found = matching(offers);
    if (reported_ && std::equal(found.begin(), found.end(), reported_->begin(), reported_->end(), is_same)) {
        return;
    }
    reported_ = std::move(found);
    post_report();
}

void Running_lookup::post_report() {
    strand_->post([weak = weak_from_this(), found = *reported_] {
        if (auto const lookup = weak.lock()) {
            lookup->report(found);
        }
    });
}

// The strand logs what the handler throws.
void Running_lookup::report(std::vector<Known_offer> const& found) {
    try {
        handler_(handles_of(found));
    } catch (tarq::com::Infrastructure_exception const&) {
        engine_->timer().watch(weak_from_this(), Clock::now() + k_pause_after_failure);
        throw;
    }
}

std::optional<Clock::time_point> Running_lookup::expire(Clock::time_point /*now*/) {
    engine_->strand()->post([weak = weak_from_this()] {
        if (auto const lookup = weak.lock()) {
            lookup->post_report();
        }
    });
    return std::nullopt;
}

}  // namespace ara::com::dds
