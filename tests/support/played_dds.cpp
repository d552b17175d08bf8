// The engine's functions, and what a test may do to them; the entities behind them are in played_domain.cpp.
#include "support/played_dds.h"

#include "support/played_domain.h"
#include "support/played_sample.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <utility>

namespace test_support::played_dds {

namespace {

dds_guid_t guid_of(Thing const& thing) {
    dds_guid_t guid{};
    auto const put = [&guid](std::size_t place, dds_entity_t number) {
        for (std::size_t octet = 0; octet < 4; ++octet) {
            guid.v[place + octet] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(number) >> (24 - 8 * octet));
        }
    };
    put(0, thing.owner().id);
    put(12, thing.participant ? thing.id : 0x1c1);
    return guid;
}

dds_return_t list_matched(dds_entity_t id, dds_instance_handle_t* handles, std::size_t size) {
    auto const thing = domain().get(id);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    std::lock_guard const lock(domain().mutex);
    std::size_t place = 0;
    for (auto const& [other, ignored] : thing->matched) {
        if (place < size) {
            handles[place++] = static_cast<dds_instance_handle_t>(other);
        }
    }
    return static_cast<dds_return_t>(thing->matched.size());
}

dds_builtintopic_endpoint_t* describe(dds_entity_t id, dds_instance_handle_t handle) {
    auto const thing = domain().get(id);
    if (!thing) {
        return nullptr;
    }
    std::lock_guard const lock(domain().mutex);
    auto const place = thing->matched.find(static_cast<dds_entity_t>(handle));
    if (place == thing->matched.end()) {
        return nullptr;
    }
    auto* const endpoint = static_cast<dds_builtintopic_endpoint_t*>(dds_alloc(sizeof(dds_builtintopic_endpoint_t)));
    endpoint->key = guid_of(*place->second);
    endpoint->participant_key = guid_of(place->second->owner());
    return endpoint;
}

template <class Status>
dds_return_t status_of(dds_entity_t id, Status& status) {
    auto const thing = domain().get(id);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    std::lock_guard const lock(domain().mutex);
    status = {};
    status.total_count = thing->times_matched;
    status.current_count = static_cast<std::uint32_t>(thing->matched.size());
    return DDS_RETCODE_OK;
}

dds_entity_t make_in_partition(dds_entity_t parent, dds_qos_t const* quality) {
    auto const thing = domain().make_below(parent);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    std::uint32_t count = 0;
    char** names = nullptr;
    dds_qget_partition(quality, &count, &names);
    for (std::uint32_t number = 0; number < count; ++number) {
        thing->partition = names[number];
        dds_free(names[number]);
    }
    dds_free(names);
    return domain().add(thing);
}

Thing_ptr make_endpoint(dds_entity_t parent, dds_entity_t topic_id, dds_qos_t const* quality) {
    auto const topic = domain().get(topic_id);
    auto const thing = domain().make_below(parent);
    if (!thing || !topic) {
        return nullptr;
    }
    thing->partition = thing->parent->partition;
    thing->type = topic->type;
    thing->topic = topic->topic;
    thing->filter = topic->filter;
    dds_durability_kind_t durability = DDS_DURABILITY_VOLATILE;
    dds_qget_durability(quality, &durability);
    thing->keeps = durability == DDS_DURABILITY_TRANSIENT_LOCAL;
    return thing;
}

dds_return_t end_instance(dds_entity_t writer, void const* sample, dds_instance_state_t state) {
    auto const thing = domain().get(writer);
    Packed packed;
    if (!thing || !pack(*thing->type, sample, now(), packed)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    domain().end(thing, packed, state);
    return DDS_RETCODE_OK;
}

}  // namespace

Faults& faults() {
    static Faults faults;
    return faults;
}

std::vector<dds_entity_t> participants() {
    return domain().participants();
}

void lose(dds_entity_t participant) {
    domain().lose(participant);
}

void find(dds_entity_t participant) {
    domain().find(participant);
}

std::string take_configuration() {
    std::lock_guard const lock(domain().mutex);
    return std::exchange(domain().configuration, {});
}

bool write_octets(dds_entity_t writer, std::string octets) {
    auto const thing = domain().get(writer);
    Packed packed;
    if (!thing || !pack_octets(*thing->type, std::move(octets), now(), packed)) {
        return false;
    }
    domain().write(thing, packed);
    return true;
}

}  // namespace test_support::played_dds

// Names of parameters are those of the engine's documentation, where that matters.

namespace played = test_support::played_dds;

extern "C" {

dds_entity_t dds_create_domain(dds_domainid_t /*id*/, char const* configuration) {
    auto const domain = played::domain().add(played::domain().make_below(0));
    std::lock_guard const lock(played::domain().mutex);
    played::domain().configuration = configuration;
    return domain;
}

dds_entity_t dds_create_participant(dds_domainid_t /*id*/, dds_qos_t const* /*quality*/,
                                    dds_listener_t const* /*listener*/) {
    auto const thing = played::domain().make_below(0);
    thing->is_participant = true;
    return played::domain().add(thing);
}

dds_return_t dds_get_guid(dds_entity_t entity, dds_guid_t* guid) {
    auto const thing = played::domain().get(entity);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    *guid = played::guid_of(*thing);
    return DDS_RETCODE_OK;
}

dds_entity_t dds_create_topic(dds_entity_t participant, dds_topic_descriptor_t const* type, char const* name,
                              dds_qos_t const* /*quality*/, dds_listener_t const* /*listener*/) {
    auto const thing = played::domain().make_below(participant);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    thing->type = type;
    thing->topic = name;
    return played::domain().add(thing);
}

dds_return_t dds_set_topic_filter_extended(dds_entity_t topic, dds_topic_filter const* filter) {
    auto const thing = played::domain().get(topic);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    thing->filter = *filter;
    return DDS_RETCODE_OK;
}

dds_entity_t dds_create_publisher(dds_entity_t participant, dds_qos_t const* quality,
                                  dds_listener_t const* /*listener*/) {
    return played::make_in_partition(participant, quality);
}

dds_entity_t dds_create_subscriber(dds_entity_t participant, dds_qos_t const* quality,
                                   dds_listener_t const* /*listener*/) {
    return played::make_in_partition(participant, quality);
}

dds_entity_t dds_create_writer(dds_entity_t publisher, dds_entity_t topic, dds_qos_t const* quality,
                               dds_listener_t const* listener) {
    auto& until_failure = played::faults().writers_until_failure;
    if (until_failure >= 0 && until_failure-- == 0) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    auto const thing = played::make_endpoint(publisher, topic, quality);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    dds_lget_publication_matched_arg(listener, &thing->on_reader, &thing->matched_argument, nullptr);
    thing->is_writer = true;
    return played::domain().add(thing);
}

dds_entity_t dds_create_reader(dds_entity_t subscriber, dds_entity_t topic, dds_qos_t const* quality,
                               dds_listener_t const* listener) {
    auto& failures = played::faults().readers_that_fail;
    if (failures > 0 && failures-- > 0) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    auto const thing = played::make_endpoint(subscriber, topic, quality);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    dds_lget_data_available_arg(listener, &thing->on_data, &thing->data_argument, nullptr);
    dds_lget_subscription_matched_arg(listener, &thing->on_writer, &thing->matched_argument, nullptr);
    thing->is_reader = true;
    return played::domain().add(thing);
}

dds_return_t dds_delete(dds_entity_t entity) {
    played::domain().remove(entity);
    return DDS_RETCODE_OK;
}

dds_return_t dds_write_ts(dds_entity_t writer, void const* sample, dds_time_t time) {
    auto const thing = played::domain().get(writer);
    if (!thing) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    auto& failures = played::faults().writes_that_fail;
    if (thing->type->m_nkeys == 0 && failures > 0 && failures-- > 0) {
        return DDS_RETCODE_TIMEOUT;
    }
    played::Packed packed;
    if (!played::pack(*thing->type, sample, time, packed)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    played::domain().write(thing, packed);
    return DDS_RETCODE_OK;
}

dds_return_t dds_dispose(dds_entity_t writer, void const* sample) {
    return played::end_instance(writer, sample, DDS_IST_NOT_ALIVE_DISPOSED);
}

dds_return_t dds_unregister_instance(dds_entity_t writer, void const* sample) {
    return played::end_instance(writer, sample, DDS_IST_NOT_ALIVE_NO_WRITERS);
}

dds_return_t dds_take(dds_entity_t reader, void** samples, dds_sample_info_t* infos, std::size_t /*size*/,
                      std::uint32_t /*most*/) {
    auto const thing = played::domain().get(reader);
    played::Arrival arrival;
    if (!thing || !played::domain().take(thing, arrival)) {
        return 0;
    }
    played::unpack(arrival.sample, *samples);
    *infos = played::info_of(arrival);
    return 1;
}

dds_return_t dds_get_matched_publications(dds_entity_t reader, dds_instance_handle_t* writers, std::size_t size) {
    auto const count = played::list_matched(reader, writers, size);
    if (auto const* const after_look = played::faults().after_look.exchange(nullptr)) {
        (*after_look)();
    }
    return count;
}

dds_return_t dds_get_matched_subscriptions(dds_entity_t writer, dds_instance_handle_t* readers, std::size_t size) {
    return played::list_matched(writer, readers, size);
}

dds_builtintopic_endpoint_t* dds_get_matched_publication_data(dds_entity_t reader, dds_instance_handle_t writer) {
    return played::describe(reader, writer);
}

dds_builtintopic_endpoint_t* dds_get_matched_subscription_data(dds_entity_t writer, dds_instance_handle_t reader) {
    return played::describe(writer, reader);
}

dds_return_t dds_get_publication_matched_status(dds_entity_t writer, dds_publication_matched_status_t* status) {
    return played::status_of(writer, *status);
}

dds_return_t dds_get_subscription_matched_status(dds_entity_t reader, dds_subscription_matched_status_t* status) {
    return played::status_of(reader, *status);
}

}  // extern "C"
