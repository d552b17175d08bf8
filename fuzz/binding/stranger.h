#ifndef FUZZ_BINDING_STRANGER_H
#define FUZZ_BINDING_STRANGER_H

#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/entities/participant.h"
#include "rpc_headers.h"

#include <optional>
#include <string>

namespace fuzz {

/// A stranger's part of one service: requests to ours, an instance of his own, and samples of its events.
class Stranger {
 public:
    Stranger(ara::com::dds::Participant& participant, ara::com::Service_type const& type,
             ara::com::Event_type const* event);

    void request(std::string const& octets) const;
    void sample(std::string const& octets) const;

    /// The octets are what follows the request's name; when they are no reply, a refusal is sent.
    void answer_next_with(std::string octets) { answer_ = std::move(octets); }

 private:
    void follow();
    void answer(dds_rpc_RequestHeader const& request);

    ara::com::dds::Participant& participant_;
    ara::com::Service_type const& type_;
    std::string answer_;
    ara::com::dds::Writer const requests_;
    ara::com::dds::Reader const replies_to_him_;
    std::optional<ara::com::dds::Writer> replies_;
    std::optional<ara::com::dds::Writer> samples_;
    ara::com::dds::Reader const served_;
};

}  // namespace fuzz

#endif
