#include "ara/com/dds/calls/call_path.h"

#include "ara/com/dds/calls/request_number.h"
#include "ara/com/dds/entities/matched.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace ara::com::dds {

namespace {

bool has_one_of(std::vector<Peer> const& peers, Guid const& participant) {
    return std::any_of(peers.begin(), peers.end(), [&](auto const& peer) { return peer.participant == participant; });
}

}  // namespace

Call_path::Call_path(Participant& participant, Service_type const& type, std::string instance,
                     Received_handler received, Matched_handler const& matched)
    : instance_(std::move(instance)),
      requests_(participant, {type.request, instance_}, call_quality(k_longest_write), matched),
      identity_(guid_of(requests_.entity())),
      replies_(participant, {type.reply, to_text(identity_)}, call_quality(k_longest_write), std::move(received),
               matched) {}

bool Call_path::reaches(Guid const& server) const {
    return has_one_of(readers_matched_by(requests_.entity()), server) &&
           has_one_of(writers_matched_by(replies_.entity()), server);
}

void Call_path::send(void* request, std::int64_t number) const {
    auto& header = *static_cast<dds_rpc_RequestHeader*>(request);
    static_assert(sizeof header.requestId.writer_guid == sizeof identity_);
    std::memcpy(&header.requestId.writer_guid, identity_.data(), identity_.size());
    header.requestId.sequence_number = to_wire(number);
    std::copy_n(instance_.c_str(), std::min(instance_.size() + 1, sizeof header.instanceName), header.instanceName);
    requests_.write(request);
}

std::int64_t Call_path::number_of(dds_rpc_ReplyHeader const& header) const {
    auto const& id = header.relatedRequestId;
    if (std::memcmp(&id.writer_guid, identity_.data(), identity_.size()) != 0) {
        return 0;
    }
    return dds::number_of(id.sequence_number);
}

}  // namespace ara::com::dds
