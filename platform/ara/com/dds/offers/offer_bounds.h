#ifndef ARA_COM_DDS_OFFERS_OFFER_BOUNDS_H
#define ARA_COM_DDS_OFFERS_OFFER_BOUNDS_H

#include "ara/com/dds/entities/guid.h"
#include "base/mutex.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <tuple>

#include <dds/dds.h>

struct ara_com_ServiceOffer;

namespace ara::com::dds {

/// Decides which offers are known here, so that nobody can fill this process with his: those that can be understood, at
/// most 64 of one writer, whatever participants they name, and 1,024 in all beside this process's own. What is refused
/// for its number is told once. Thread-safe, and quick, since threads of the engine ask.
class Offer_bounds {
 public:
    using Is_own =
        std::function<bool(Guid const& participant, std::string const& interface_name, std::string const& instance)>;

    explicit Offer_bounds(Is_own is_own) : is_own_(std::move(is_own)) {}

    /// Whether an offer is let in. It is counted until it ends.
    bool admits(ara_com_ServiceOffer const& offer, dds_instance_handle_t writer);

    /// An offer ended; the key is enough, and one that was never let in does no harm.
    void ended(ara_com_ServiceOffer const& offer);

 private:
    using Key = std::tuple<Guid, std::string, std::string>;

    bool has_room(dds_instance_handle_t writer, Guid const& participant) REQUIRES(mutex_);

    Is_own const is_own_;
    base::Mutex mutex_;
    std::map<Key, dds_instance_handle_t> counted_ GUARDED_BY(mutex_);  // for whom
    std::map<dds_instance_handle_t, std::size_t> of_writer_ GUARDED_BY(mutex_);
    bool told_ GUARDED_BY(mutex_){false};
};

}  // namespace ara::com::dds

#endif
