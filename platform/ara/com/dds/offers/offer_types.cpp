#include "ara/com/dds/offers/offer_types.h"

#include "service_offer.h"

namespace ara::com::dds {

Topic_type offer_topic() {
    return {&ara_com_ServiceOffer_desc, sizeof(ara_com_ServiceOffer)};
}

}  // namespace ara::com::dds
