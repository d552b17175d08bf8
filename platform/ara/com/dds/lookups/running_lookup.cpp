#include "ara/com/dds/lookups/running_lookup.h"

#include "tarq/com/exception.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

namespace ara::com::dds {

namespace {

constexpr std::chrono::milliseconds k_pause_after_failure{500};

bool is_same(Known_offer const& left, Known_offer const& right) {
    return key_of(left) == key_of(right);
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
    auto const opening = engine_->adopt(weak_from_this());
    {
        base::Lock_guard const lock(mutex_);
        self_ = shared_from_this();
    }
    engine_->offers().add(weak_from_this(), interface_, wanted_);
}

void Running_lookup::close() {
    std::shared_ptr<Running_lookup> self;
    {
        base::Lock_guard const lock(mutex_);
        self = std::move(self_);
    }
    strand_->close();
}

void Running_lookup::offers_changed(Known_offer_list const& offers) {
    {
        base::Lock_guard const lock(mutex_);
        if (newest_ && std::equal(offers.begin(), offers.end(), newest_->begin(), newest_->end(), is_same)) {
            return;
        }
        newest_ = offers;
    }
    post_report();
}

// While a report waits for the one that runs, it takes in what changes.
void Running_lookup::post_report() {
    if (waiting_.exchange(true)) {
        return;
    }
    strand_->post([weak = weak_from_this()] {
        if (auto const lookup = weak.lock()) {
            lookup->report();
        }
    });
}

Known_offer_list Running_lookup::newest() {
    waiting_ = false;
    base::Lock_guard const lock(mutex_);
    return *newest_;
}

// The strand logs what else the handler throws.
void Running_lookup::report() {
    try {
        handler_(handles_of(newest()));
        failure_.succeeded();
    } catch (tarq::com::Infrastructure_exception const& error) {
        report_again(error);
    } catch (std::bad_alloc const& error) {
        report_again(error);
    }
}

void Running_lookup::report_again(std::exception const& error) {
    failure_.failed(error);
    engine_->timer().watch(weak_from_this(), Clock::now() + k_pause_after_failure);
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
