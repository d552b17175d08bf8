#include "stranger.h"

#include "ara/com/dds/entities/guid.h"
#include "ara/com/dds/entities/matched.h"
#include "support/played_dds.h"

#include <cstring>

namespace fuzz {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): the stranger speaks for himself with its parts

Stranger::Stranger(Participant& participant, ara::com::Service_type const& type, ara::com::Event_type const* event)
    : participant_(participant),
      type_(type),
      requests_(participant, {type.request, "app"}, call_quality(k_longest_write)),
      // So that nobody waits for him.
      replies_to_him_(participant, {type.reply, to_text(guid_of(requests_.entity()))}, call_quality(k_longest_write),
                      [](auto&&...) {}),
      served_(
          participant, {type.request, "strange"}, call_quality(k_longest_write),
          [this](auto const& sample, auto const& /*info*/) {
              answer(*static_cast<dds_rpc_RequestHeader const*>(sample.get()));
          },
          [this] { follow(); }) {
    if (event != nullptr) {
        samples_.emplace(participant, Channel{event->sample, "strange"}, event_writer_quality(event->is_field));
    }
}

void Stranger::request(std::string const& octets) const {
    test_support::played_dds::write_octets(requests_.entity(), octets);
}

void Stranger::sample(std::string const& octets) const {
    if (samples_) {
        test_support::played_dds::write_octets(samples_->entity(), octets);
    }
}

// The client's replies, as soon as it is known.
void Stranger::follow() {
    if (auto const clients = writers_matched_by(served_.entity()); !clients.empty()) {
        replies_.emplace(participant_, Channel{type_.reply, to_text(clients.back().identity)},
                         call_quality(k_longest_write));
    }
}

void Stranger::answer(dds_rpc_RequestHeader const& request) {
    std::string const id(reinterpret_cast<char const*>(&request.requestId), sizeof request.requestId);
    if (!test_support::played_dds::write_octets(replies_->entity(), id + answer_)) {
        auto const reply = make_sample(type_.reply);
        std::memcpy(static_cast<char*>(reply.get()) + type_.reply_union, &ara::com::k_no_operation,
                    sizeof ara::com::k_no_operation);
        auto& header = *static_cast<dds_rpc_ReplyHeader*>(reply.get());
        header.relatedRequestId = request.requestId;
        header.remoteEx = dds_rpc_REMOTE_EX_UNSUPPORTED;
        replies_->write(reply.get());
    }
}

}  // namespace fuzz
