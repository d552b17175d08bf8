#ifndef ARA_COM_DDS_LOOKUPS_RUNNING_LOOKUP_H
#define ARA_COM_DDS_LOOKUPS_RUNNING_LOOKUP_H

#include "ara/com/binding.h"
#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/offers/known_offers.h"
#include "ara/com/dds/threads/lasting_failure.h"
#include "ara/com/dds/threads/strand.h"
#include "base/mutex.h"

#include <atomic>
#include <exception>
#include <memory>
#include <optional>
#include <string>

namespace ara::com::dds {

/// A lookup; it keeps itself until it is stopped or the engine ends.
class Running_lookup : public Lookup,
                       public Offer_observer,
                       public Expiring,
                       public Part,
                       public std::enable_shared_from_this<Running_lookup> {
 public:
    Running_lookup(std::shared_ptr<Engine> engine, std::string interface_name, InstanceSpecifier wanted,
                   FindServiceHandler handler);

    /// Throws `tarq::com::Infrastructure_exception`.
    void start();

    void stop() override { close(); }
    void release() override { strand_->refuse(); }
    void close() override;
    void offers_changed(Known_offer_list const& offers) override;

    /// The timer's thread.
    std::optional<Clock::time_point> expire(Clock::time_point now) override;

 private:
    void post_report();
    Known_offer_list newest();
    void report();
    void report_again(std::exception const& error);

    std::shared_ptr<Engine> const engine_;
    std::string const interface_;
    InstanceSpecifier const wanted_;
    FindServiceHandler const handler_;
    std::shared_ptr<Strand> const strand_;
    Lasting_failure failure_{"A handler of the communication threw ",
                             "A handler of the communication no longer throws; failures before: "};
    std::atomic<bool> waiting_{false};  // a report that has not begun
    base::Mutex mutex_;
    std::optional<Known_offer_list> newest_ GUARDED_BY(mutex_);
    std::shared_ptr<Running_lookup> self_ GUARDED_BY(mutex_);
};

}  // namespace ara::com::dds

#endif
