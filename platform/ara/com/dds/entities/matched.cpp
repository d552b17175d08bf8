#include "ara/com/dds/entities/matched.h"

#include <algorithm>
#include <cstddef>
#include <memory>

namespace ara::com::dds {

namespace {

struct Endpoint_deleter {
    void operator()(dds_builtintopic_endpoint_t* endpoint) const noexcept { dds_builtintopic_free_endpoint(endpoint); }
};
using Endpoint = std::unique_ptr<dds_builtintopic_endpoint_t, Endpoint_deleter>;

using List = dds_return_t (*)(dds_entity_t, dds_instance_handle_t*, std::size_t);
using Describe = dds_builtintopic_endpoint_t* (*)(dds_entity_t, dds_instance_handle_t);

// There may be more than fit, and more the next time.
std::vector<dds_instance_handle_t> handles(dds_entity_t entity, List list) {
    std::vector<dds_instance_handle_t> handles(8);
    for (;;) {
        auto const count = static_cast<std::size_t>(std::max(list(entity, handles.data(), handles.size()), 0));
        if (count <= handles.size()) {
            handles.resize(count);
            return handles;
        }
        handles.resize(2 * count);
    }
}

std::optional<Peer> peer(dds_entity_t entity, dds_instance_handle_t handle, Describe describe) {
    Endpoint const endpoint{describe(entity, handle)};
    if (!endpoint) {
        return std::nullopt;
    }
    return Peer{handle, guid_of(endpoint->key), guid_of(endpoint->participant_key)};
}

std::vector<Peer> peers(dds_entity_t entity, List list, Describe describe) {
    std::vector<Peer> peers;
    for (auto const handle : handles(entity, list)) {
        if (auto const found = peer(entity, handle, describe)) {
            peers.push_back(*found);
        }
    }
    return peers;
}

}  // namespace

std::vector<Peer> writers_matched_by(dds_entity_t reader) {
    return peers(reader, dds_get_matched_publications, dds_get_matched_publication_data);
}

std::optional<Peer> writer_matched_by(dds_entity_t reader, dds_instance_handle_t writer) {
    return peer(reader, writer, dds_get_matched_publication_data);
}

std::vector<Peer> readers_matched_by(dds_entity_t writer) {
    return peers(writer, dds_get_matched_subscriptions, dds_get_matched_subscription_data);
}

}  // namespace ara::com::dds
