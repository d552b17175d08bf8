#include "ara/com/dds/known_offers.h"

#include "ara/com/dds/process_space.h"
#include "service_offer.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <unistd.h>

namespace ara::com::dds {

namespace {

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

Known_offers::Known_offers(Participant& participant, std::shared_ptr<Strand> strand)
    : participant_(participant), strand_(std::move(strand)), process_space_(process_space()) {}

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
    watch_ = std::make_unique<Process_watch>(
        [this](pid_t process) { strand_->post([this, process] { process_ended(process); }); });
    reader_ = std::make_unique<Reader>(
        participant_, Channel{offer_topic(), {}}, offer_quality(),
        [this](Sample sample, dds_sample_info_t const& info) {
            std::shared_ptr<void const> const kept = std::move(sample);
            auto const state = info.instance_state;
            auto const written = info.source_timestamp;
            strand_->post([this, kept, state, written] { received(kept.get(), state, written); });
        });
}

void Known_offers::close() {
    reader_.reset();
    watch_.reset();
}

// Without data, for an offer that ended, the key is set.
void Known_offers::received(void const* sample, dds_instance_state_t state, dds_time_t written) {
    auto const& offer = *static_cast<ara_com_ServiceOffer const*>(sample);
    if (state != DDS_IST_ALIVE) {
        drop(read(offer, process_space_));
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
        report();
    }
}

void Known_offers::drop(Known_offer const& offer) {
    auto const [begin, end] = std::equal_range(offers_.begin(), offers_.end(), offer, comes_before);
    if (begin != end) {
        offers_.erase(begin, end);
        report();
    }
}

void Known_offers::process_ended(pid_t process) {
    auto const gone = std::remove_if(offers_.begin(), offers_.end(),
                                     [process](auto const& offer) { return offer.process == process; });
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
