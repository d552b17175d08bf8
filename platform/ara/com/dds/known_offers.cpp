#include "ara/com/dds/known_offers.h"

#include "ara/com/dds/process_space.h"
#include "ara/log/logging.h"
#include "service_offer.h"
#include "tarq/com/exception.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <unistd.h>

namespace ara::com::dds {

namespace {

// A participant announces itself every 0.8 s. Who was lost and still runs is found again, and connected, in this time.
constexpr std::chrono::milliseconds k_longest_absence{1500};
constexpr std::chrono::milliseconds k_pause_before_next_try{500};

bool comes_before(Known_offer const& left, Known_offer const& right) {
    return key_of(left) < key_of(right);
}

Known_offer read(ara_com_ServiceOffer const& sample, std::string const& process_space) {
    Known_offer offer{sample.interface_name, sample.instance_name, {}, 0};
    std::copy(std::begin(sample.participant), std::end(sample.participant), offer.participant.begin());
    if (!process_space.empty() && process_space == sample.process_space && sample.process > 0) {
        offer.process = static_cast<pid_t>(sample.process);
    }
    return offer;
}

}  // namespace

Known_offers::Known_offers(Participant& participant, std::shared_ptr<Strand> strand, Call_timer& timer)
    : participant_(participant), strand_(std::move(strand)), timer_(timer), process_space_(process_space()) {}

void Known_offers::add(std::weak_ptr<Offer_observer> observer) {
    strand_->post([this, observer = std::move(observer)] {
        begin();
        observers_.push_back(observer);
        if (auto const added = observer.lock()) {
            added->offers_changed(offers_);
        }
    });
}

void Known_offers::begin() {
    if (reader_) {
        return;
    }
    try {
        open_reader();
    } catch (tarq::com::Infrastructure_exception const& error) {
        if (!std::exchange(failed_, true)) {
            ara::log::LogError() << "Offers of services can't be heard of yet: " << error.what();
        }
        look_at(Clock::now() + k_pause_before_next_try);
    }
}

void Known_offers::open_reader() {
    if (!watch_) {
        watch_ = std::make_unique<Process_watch>([this](pid_t process) {
            strand_->post(
                [this, process] { drop_if([process](auto const& offer) { return offer.process == process; }); });
        });
    }
    reader_ = std::make_unique<Reader>(
        participant_, Channel{offer_topic(), {}}, offer_quality(),
        [this](Sample sample, dds_sample_info_t const& info) {
            std::shared_ptr<void const> const kept = std::move(sample);
            auto const state = info.instance_state;
            auto const written = info.source_timestamp;
            strand_->post([this, kept, state, written] { received(kept.get(), state, written); });
        });
}

// One look at a time: each begins with the earliest time that is left.
void Known_offers::look_at(Clock::time_point when) {
    if (!std::exchange(looks_later_, true)) {
        timer_.watch(weak_from_this(), when);
    }
}

std::optional<Clock::time_point> Known_offers::expire(Clock::time_point /*now*/) {
    strand_->post([this] { look(); });
    return std::nullopt;
}

void Known_offers::look() {
    looks_later_ = false;
    begin();
    drop_if([now = Clock::now()](auto const& offer) { return offer.awaited_until && *offer.awaited_until <= now; });
    std::optional<Clock::time_point> next;
    for (auto const& offer : offers_) {
        if (offer.awaited_until && (!next || *offer.awaited_until < *next)) {
            next = offer.awaited_until;
        }
    }
    if (next) {
        look_at(*next);
    }
}

void Known_offers::close() {
    reader_.reset();
    watch_.reset();
}

// Without data, for an offer that ended, the key is set.
void Known_offers::received(void const* sample, dds_instance_state_t state, dds_time_t written) {
    auto const& offer = *static_cast<ara_com_ServiceOffer const*>(sample);
    if (state == DDS_IST_NOT_ALIVE_NO_WRITERS) {
        lose(read(offer, process_space_));
    } else if (state == DDS_IST_NOT_ALIVE_DISPOSED) {
        drop_if([key = read(offer, process_space_)](auto const& known) { return key_of(known) == key_of(key); });
    } else if (offer.version == k_mapping_version) {
        auto known = read(offer, process_space_);
        known.since = std::chrono::system_clock::time_point(std::chrono::nanoseconds(written));
        keep(std::move(known));
    }
}

void Known_offers::keep(Known_offer offer) {
    if (offer.process != 0 && offer.process != getpid() && !watch_->watch(offer.process)) {
        return;
    }
    auto const place = std::lower_bound(offers_.begin(), offers_.end(), offer, comes_before);
    if (place == offers_.end() || comes_before(offer, *place)) {
        offers_.insert(place, std::move(offer));
    } else if (place->since == offer.since && !place->awaited_until) {
        return;
    } else {
        *place = std::move(offer);
    }
    report();
}

// The end of a process that is watched is told by itself.
void Known_offers::lose(Known_offer const& offer) {
    auto const place = std::lower_bound(offers_.begin(), offers_.end(), offer, comes_before);
    if (place == offers_.end() || comes_before(offer, *place) || place->awaited_until) {
        return;
    }
    place->awaited_until = Clock::now() + k_longest_absence;
    look_at(*place->awaited_until);
    report();
}

template <class Predicate>
void Known_offers::drop_if(Predicate const& is_over) {
    auto const gone = std::remove_if(offers_.begin(), offers_.end(), is_over);
    if (gone != offers_.end()) {
        offers_.erase(gone, offers_.end());
        report();
    }
}

void Known_offers::report() {
    auto const gone = [](auto const& observer) { return observer.expired(); };
    observers_.erase(std::remove_if(observers_.begin(), observers_.end(), gone), observers_.end());
    for (auto const& observer : observers_) {
        if (auto const present = observer.lock()) {
            present->offers_changed(offers_);
        }
    }
}

}  // namespace ara::com::dds
