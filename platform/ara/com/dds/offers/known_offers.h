#ifndef ARA_COM_DDS_OFFERS_KNOWN_OFFERS_H
#define ARA_COM_DDS_OFFERS_KNOWN_OFFERS_H

#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/offers/announcer.h"
#include "ara/com/dds/offers/offer_bounds.h"
#include "ara/com/dds/offers/offer_types.h"
#include "ara/com/dds/offers/process_watch.h"
#include "ara/com/dds/threads/call_timer.h"
#include "ara/com/dds/threads/lasting_failure.h"
#include "ara/com/dds/threads/strand.h"
#include "ara/com/instance.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ara::com::dds {

/// Who wants to know what is offered.
class Offer_observer {
 public:
    virtual ~Offer_observer() = default;
    /// All offers of the interface and instances that it wants, on the engine's strand: at first what is known already,
    /// then on each change of them. Must not block.
    virtual void offers_changed(Known_offer_list const& offers) = 0;
};

/// What all participants offer, as far as it is known here. An offer ends when it is withdrawn, and at once when its
/// process has ended where that can be seen from here, which is looked for while somebody wants the offer. One whose
/// participant was not heard for the lease is awaited for a while before it ends: after a stall of either side they
/// soon find each other again.
///
/// Words: an *observer* wants the offers of one interface, of one instance or any; an offer is *lost* when its
/// participant is not heard any more, and *awaited* from then until it is heard again or that has taken too long; it is
/// *forged* when its writer belongs to another participant than it names.
///
/// The first observer has the reader opened. From then on a thread of the engine brings each sample, which goes to the
/// strand (`received`): it is kept, lost or dropped, and all observers that want it get their whole list. The timer
/// comes back for offers that are awaited, and for a reader that could not be opened (`look`).
///
/// Everything happens on the engine's strand, except where something else is said.
class Known_offers : public Expiring, public std::enable_shared_from_this<Known_offers> {
 public:
    Known_offers(Participant& participant, Announcer& announcer, std::shared_ptr<Strand> strand, Call_timer& timer);

    /// Any thread. The observer is forgotten when it goes. While offers can't be heard of that is tried again.
    void add(std::weak_ptr<Offer_observer> observer, std::string interface_name, InstanceSpecifier const& wanted);

    /// The timer's thread.
    std::optional<Clock::time_point> expire(Clock::time_point now) override;

    /// Ends all reports; for when the strand is closed.
    void close();

 private:
    struct Observer {
        std::weak_ptr<Offer_observer> observer;
        std::string interface_name;
        std::string instance;  // empty for any

        bool wants(Known_offer const& offer) const {
            return interface_name == offer.interface_name && (instance.empty() || instance == offer.instance);
        }
    };

    void begin();
    void open_reader();
    void look_at(Clock::time_point when);
    void look();
    void received(void const* sample, dds_instance_state_t state, dds_time_t written, dds_instance_handle_t writer);
    void tell_once_of_forgery(Guid const& named, Guid const& writer);
    void keep(Known_offer offer);
    bool is_believed(Known_offer const& offer) const;
    bool has_ended(Known_offer const& offer);
    void watch_those_wanted_by(Observer const& observer);
    void lose(Known_offer const& offer);
    template <class Predicate>
    void drop_if(Predicate const& is_over);
    void report(Known_offer const& changed);
    void forget_gone_observers();
    Known_offer_list wanted_by(Observer const& observer) const;

    Participant& participant_;
    std::shared_ptr<Strand> const strand_;
    Call_timer& timer_;
    std::string const process_space_;
    Known_offer_list offers_;
    std::vector<Observer> observers_;
    Offer_bounds bounds_;
    std::unique_ptr<Process_watch> watch_;
    std::uint64_t found_{0};           // of the offer that was found last
    Clock::time_point all_are_new_{};  // from then on who is found was not there before
    std::unique_ptr<Reader> reader_;   // once there was an observer
    Lasting_failure failure_{"Offers of services can't be heard of yet: ",
                             "Offers of services are heard of now; failures before: "};
    bool looks_later_{false};  // by the timer
    bool told_of_forgery_{false};
};

}  // namespace ara::com::dds

#endif
