#ifndef ARA_COM_DDS_OFFERS_OFFER_TYPES_H
#define ARA_COM_DDS_OFFERS_OFFER_TYPES_H

#include "ara/com/dds/entities/guid.h"
#include "ara/com/service_type.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <sys/types.h>

namespace ara::com::dds {

/// What offers, requests, replies and events look like and where they go; others are not understood.
inline constexpr std::uint32_t k_mapping_version = 1;

/// The topic on which offers are announced.
Topic_type offer_topic();

/// One instance as a participant offers it.
struct Known_offer {
    std::string interface_name;
    std::string instance;
    Guid participant;
    pid_t process;                                  ///< 0 when it can't be named from here
    std::chrono::system_clock::time_point since{};  ///< another one for each time that it is offered
    std::uint64_t found{0};  ///< grows from offer to offer; 0 for those that were there before they were listened for
    /// Set while its participant is not heard any more: how long it may take to come back.
    std::optional<std::chrono::steady_clock::time_point> awaited_until{};
};

inline auto key_of(Known_offer const& offer) {
    return std::tie(offer.interface_name, offer.instance, offer.participant);
}

/// In order of interfaces, instances and participants, without duplicates.
using Known_offer_list = std::vector<Known_offer>;

}  // namespace ara::com::dds

#endif
