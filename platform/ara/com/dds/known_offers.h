#ifndef ARA_COM_DDS_KNOWN_OFFERS_H
#define ARA_COM_DDS_KNOWN_OFFERS_H

#include "ara/com/dds/endpoints.h"
#include "ara/com/dds/offer_types.h"
#include "ara/com/dds/process_watch.h"
#include "ara/com/dds/strand.h"

#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace ara::com::dds {

/// Who wants to know what is offered.
class Offer_observer {
 public:
    virtual ~Offer_observer() = default;
    /// The whole list, on the engine's strand: at first what is known already, then on each change. Must not block.
    virtual void offers_changed(Known_offer_list const& offers) = 0;
};

/// What all participants offer, as far as it is known here. An offer ends when it is withdrawn, when its participant
/// was not heard for the lease, and at once when its process has ended where that can be seen from here.
///
/// Everything happens on the engine's strand.
class Known_offers {
 public:
    Known_offers(Participant& participant, std::shared_ptr<Strand> strand);

    /// Any thread. The observer is forgotten when it goes.
    void add(std::weak_ptr<Offer_observer> observer);

    /// Ends all reports; for when the strand is closed.
    void close();

 private:
    void begin();
    void received(void const* sample, dds_instance_state_t state, dds_time_t written);
    void keep(Known_offer offer);
    void drop(Known_offer const& offer);
    void process_ended(pid_t process);
    void report();

    Participant& participant_;
    std::shared_ptr<Strand> const strand_;
    std::string const process_space_;
    Known_offer_list offers_;
    std::vector<std::weak_ptr<Offer_observer>> observers_;
    std::unique_ptr<Process_watch> watch_;
    std::unique_ptr<Reader> reader_;  // once there was an observer
};

}  // namespace ara::com::dds

#endif
