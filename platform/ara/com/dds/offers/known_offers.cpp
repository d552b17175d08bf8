#include "ara/com/dds/offers/known_offers.h"

#include "ara/com/dds/entities/matched.h"
#include "ara/com/dds/offers/process_space.h"
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

// By then who was there before has announced himself.
constexpr std::chrono::milliseconds k_time_to_find_all{1000};

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

Known_offers::Known_offers(Participant& participant, Announcer& announcer, std::shared_ptr<Strand> strand,
                           Call_timer& timer)
    : participant_(participant),
      strand_(std::move(strand)),
      timer_(timer),
      process_space_(process_space()),
      bounds_([&participant, &announcer](auto const& identity, auto const& interface_name, auto const& instance) {
          return identity == participant.identity() && announcer.claims(interface_name, instance);
      }) {}

void Known_offers::add(std::weak_ptr<Offer_observer> observer, std::string interface_name,
                       InstanceSpecifier const& wanted) {
    auto instance = wanted.ToString() == "*" ? std::string() : wanted.ToString();
    strand_->post([this, added = Observer{std::move(observer), std::move(interface_name), std::move(instance)}] {
        begin();
        forget_gone_observers();
        watch_those_wanted_by(added);
        observers_.push_back(added);
        if (auto const present = added.observer.lock()) {
            present->offers_changed(wanted_by(added));
        }
    });
}

void Known_offers::begin() {
    if (reader_) {
        return;
    }
    try {
        open_reader();
        failure_.succeeded();
    } catch (tarq::com::Infrastructure_exception const& error) {
        failure_.failed(error);
        look_at(Clock::now() + k_pause_before_next_try);
    }
}

void Known_offers::open_reader() {
    all_are_new_ = Clock::now() + k_time_to_find_all;
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
            if (state != DDS_IST_ALIVE) {
                bounds_.ended(*static_cast<ara_com_ServiceOffer const*>(kept.get()));
            }
            auto const written = info.source_timestamp;
            auto const writer = info.publication_handle;
            strand_->post([this, kept, state, written, writer] { received(kept.get(), state, written, writer); });
        },
        Matched_handler(),
        [this](void const* sample, dds_instance_handle_t writer) {
            return bounds_.admits(*static_cast<ara_com_ServiceOffer const*>(sample), writer);
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

// Without data, for an offer that ended, the key is set. A participant speaks for itself only; one that is lost is told
// by the engine.
void Known_offers::received(void const* sample, dds_instance_state_t state, dds_time_t written,
                            dds_instance_handle_t writer) {
    auto offer = read(*static_cast<ara_com_ServiceOffer const*>(sample), process_space_);
    if (state == DDS_IST_NOT_ALIVE_NO_WRITERS) {
        lose(offer);
        return;
    }
    auto const peer = writer_matched_by(reader_->entity(), writer);
    if (peer && peer->participant != offer.participant) {
        tell_once_of_forgery(offer.participant, peer->participant);
    } else if (state == DDS_IST_NOT_ALIVE_DISPOSED) {
        drop_if([&offer](auto const& known) { return key_of(known) == key_of(offer); });
    } else {
        // Whose writer has gone, or can't be asked yet, is not watched.
        offer.process = peer ? offer.process : 0;
        offer.since = std::chrono::system_clock::time_point(std::chrono::nanoseconds(written));
        keep(std::move(offer));
    }
}

void Known_offers::tell_once_of_forgery(Guid const& named, Guid const& writer) {
    if (!std::exchange(told_of_forgery_, true)) {
        ara::log::LogWarn() << "An offer that names another participant than its writer's is left alone, as are all "
                               "such: of participant "
                            << to_text(named) << ", written by " << to_text(writer);
    }
}

void Known_offers::keep(Known_offer offer) {
    if (!is_believed(offer)) {
        offer.process = 0;
    }
    auto const is_wanted = [&offer](auto const& observer) { return observer.wants(offer); };
    if (std::any_of(observers_.begin(), observers_.end(), is_wanted) && has_ended(offer)) {
        return;
    }
    auto place = std::lower_bound(offers_.begin(), offers_.end(), offer, comes_before);
    bool const is_known = place != offers_.end() && !comes_before(offer, *place);
    if (is_known && place->since == offer.since) {
        offer.found = place->found;
    } else if (Clock::now() >= all_are_new_) {
        offer.found = ++found_;
    }
    if (!is_known) {
        place = offers_.insert(place, std::move(offer));
    } else if (place->since == offer.since && !place->awaited_until) {
        return;
    } else {
        *place = std::move(offer);
    }
    report(*place);
}

// A participant is in one process. What names further ones would have them all watched.
bool Known_offers::is_believed(Known_offer const& offer) const {
    return std::none_of(offers_.begin(), offers_.end(), [&offer](auto const& known) {
        return known.participant == offer.participant && known.process != 0 && known.process != offer.process;
    });
}

// A process that runs is watched from then on. There are not watches for all that anybody may offer, so this is asked
// for offers that somebody wants.
bool Known_offers::has_ended(Known_offer const& offer) {
    return offer.process != 0 && offer.process != getpid() && !watch_->watch(offer.process);
}

void Known_offers::watch_those_wanted_by(Observer const& observer) {
    for (auto const& offer : wanted_by(observer)) {
        if (has_ended(offer)) {
            drop_if([process = offer.process](auto const& known) { return known.process == process; });
        }
    }
}

// The end of a process that is watched is told by itself.
void Known_offers::lose(Known_offer const& offer) {
    auto const place = std::lower_bound(offers_.begin(), offers_.end(), offer, comes_before);
    if (place == offers_.end() || comes_before(offer, *place) || place->awaited_until) {
        return;
    }
    place->awaited_until = Clock::now() + k_longest_absence;
    look_at(*place->awaited_until);
    report(*place);
}

template <class Predicate>
void Known_offers::drop_if(Predicate const& is_over) {
    auto const place = std::stable_partition(offers_.begin(), offers_.end(),
                                             [&is_over](auto const& offer) { return !is_over(offer); });
    Known_offer_list const gone(place, offers_.end());
    offers_.erase(place, offers_.end());
    for (auto const& offer : gone) {
        report(offer);
    }
}

// To those who want it alone.
void Known_offers::report(Known_offer const& changed) {
    forget_gone_observers();
    for (auto const& observer : observers_) {
        auto const present = observer.wants(changed) ? observer.observer.lock() : nullptr;
        if (present) {
            present->offers_changed(wanted_by(observer));
        }
    }
}

// Also before one is added: while no offer changes nothing else would.
void Known_offers::forget_gone_observers() {
    auto const gone = [](auto const& observer) { return observer.observer.expired(); };
    observers_.erase(std::remove_if(observers_.begin(), observers_.end(), gone), observers_.end());
}

Known_offer_list Known_offers::wanted_by(Observer const& observer) const {
    Known_offer const first{observer.interface_name, observer.instance, {}, 0};
    auto const begin = std::lower_bound(offers_.begin(), offers_.end(), first, comes_before);
    auto const end = std::find_if_not(begin, offers_.end(), [&](auto const& offer) { return observer.wants(offer); });
    return {begin, end};
}

}  // namespace ara::com::dds
