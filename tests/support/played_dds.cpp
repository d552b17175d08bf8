#include "support/played_dds.h"

#include "service_offer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include <dds/ddsi/ddsi_cdrstream.h>

namespace test_support::played_dds {

namespace {

constexpr std::uint32_t k_xcdr2 = 2;

/// A copy of a sample that needs no memory of the writer's.
struct Packed {
    dds_topic_descriptor_t const* type = nullptr;
    std::string octets;
    std::string key;  // of its instance
    dds_time_t time = 0;
};

struct Thing;
using Thing_ptr = std::shared_ptr<Thing>;

/// A sample on its way to a reader.
struct Arrival {
    Packed sample;
    dds_instance_state_t state;
    dds_instance_handle_t writer;
};

/// Any entity. What is not const is guarded by the domain's mutex.
struct Thing {
    dds_entity_t id = 0;
    Thing_ptr parent;
    Thing_ptr participant;  // null for itself
    bool gone = false;
    int listeners_running = 0;
    std::mutex one_listener;  // at a time, and who is called later sees what came later

    dds_topic_descriptor_t const* type = nullptr;
    std::string topic;
    std::string partition;
    dds_topic_filter filter{};

    bool is_participant = false;

    // Of readers and writers.
    bool is_reader = false;
    bool is_writer = false;
    bool keeps = false;
    dds_on_data_available_fn on_data = nullptr;
    dds_on_subscription_matched_fn on_writer = nullptr;
    dds_on_publication_matched_fn on_reader = nullptr;
    void* data_argument = nullptr;
    void* matched_argument = nullptr;
    std::map<dds_entity_t, Thing_ptr> matched;
    unsigned times_matched = 0;
    std::map<std::string, Packed> instances;  // of a writer, by key
    std::deque<Arrival> arrived;

    Thing const& owner() const { return participant ? *participant : *this; }
};

using Call = std::function<void()>;
using Calls = std::vector<Call>;

class Domain {
 public:
    Thing_ptr make_below(dds_entity_t parent);
    dds_entity_t add(Thing_ptr const& thing);
    Thing_ptr get(dds_entity_t id);
    void remove(dds_entity_t id);
    std::vector<dds_entity_t> participants();
    void lose(dds_entity_t participant);
    void find(dds_entity_t participant);
    void write(Thing_ptr const& writer, Packed const& sample);
    void end(Thing_ptr const& writer, Packed const& key, dds_instance_state_t state);
    void deliver(Thing_ptr const& reader, Arrival arrival, Calls& calls);
    bool take(Thing_ptr const& reader, Arrival& arrival);

    std::mutex mutex;
    std::string configuration;

 private:
    template <class Listener>
    void run(Thing_ptr const& thing, Listener const& listener);
    void run(Calls const& calls);
    bool may_match(Thing const& left, Thing const& right) const;
    void connect(Thing_ptr const& writer, Thing_ptr const& reader, Calls& calls);
    void disconnect(Thing_ptr const& writer, Thing_ptr const& reader, Calls& calls);
    void tell_matched(Thing_ptr const& thing, Calls& calls);
    bool has_instance(Thing const& reader, std::string const& key) const;
    template <class Action>
    void for_pairs_of(dds_entity_t participant, Action const& action);

    std::map<dds_entity_t, Thing_ptr> things_;
    std::set<dds_entity_t> lost_;
    dds_entity_t last_id_ = 0;
    std::condition_variable listener_ended_;
};

// Never destroyed: parts of a program may end after static objects have.
Domain& domain() {
    static auto& instance = *new Domain();
    return instance;
}

std::string key_of(dds_topic_descriptor_t const& type, void const* sample) {
    if (type.m_nkeys == 0) {
        return {};
    }
    auto const& offer = *static_cast<ara_com_ServiceOffer const*>(sample);
    return std::string(offer.interface_name) + '\n' + offer.instance_name + '\n' +
           std::string(std::begin(offer.participant), std::end(offer.participant));
}

bool pack(dds_topic_descriptor_t const& type, void const* sample, dds_time_t time, Packed& packed) {
    dds_ostream_t stream;
    dds_ostream_init(&stream, 0, k_xcdr2);
    bool const fits = dds_stream_write(&stream, static_cast<char const*>(sample), type.m_ops) != nullptr;
    if (fits) {
        packed = {&type, {reinterpret_cast<char const*>(stream.m_buffer), stream.m_index}, key_of(type, sample), time};
    }
    dds_ostream_fini(&stream);
    return fits;
}

/// The sample is all zero before.
void unpack(Packed const& packed, void* sample) {
    dds_istream_t stream;
    dds_istream_init(&stream, static_cast<std::uint32_t>(packed.octets.size()), packed.octets.data(), k_xcdr2);
    dds_stream_read(&stream, static_cast<char*>(sample), packed.type->m_ops);
}

// Only the key of what has ended is told.
Packed key_alone(Packed const& packed) {
    ara_com_ServiceOffer offer{};
    unpack(packed, &offer);
    offer.version = 0;
    offer.process = 0;
    offer.process_space[0] = '\0';
    Packed key;
    pack(*packed.type, &offer, packed.time, key);
    return key;
}

dds_time_t now() {
    return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

dds_sample_info_t info_of(Arrival const& arrival) {
    dds_sample_info_t info{};
    info.instance_state = arrival.state;
    info.valid_data = arrival.state == DDS_IST_ALIVE;
    info.source_timestamp = arrival.sample.time;
    info.publication_handle = arrival.writer;
    return info;
}

// Nobody knows it before it is added. Null below what has gone.
Thing_ptr Domain::make_below(dds_entity_t parent) {
    auto const thing = std::make_shared<Thing>();
    if (parent != 0) {
        thing->parent = get(parent);
        if (!thing->parent) {
            return nullptr;
        }
        thing->participant = thing->parent->participant ? thing->parent->participant : thing->parent;
    }
    return thing;
}

dds_entity_t Domain::add(Thing_ptr const& thing) {
    Calls calls;
    {
        std::lock_guard const lock(mutex);
        if (thing->parent && thing->parent->gone) {
            return DDS_RETCODE_BAD_PARAMETER;
        }
        thing->id = ++last_id_;
        for (auto const& [id, other] : things_) {
            if (thing->is_writer && other->is_reader && may_match(*thing, *other)) {
                connect(thing, other, calls);
            } else if (thing->is_reader && other->is_writer && may_match(*thing, *other)) {
                connect(other, thing, calls);
            }
        }
        things_[thing->id] = thing;
    }
    run(calls);
    return thing->id;
}

Thing_ptr Domain::get(dds_entity_t id) {
    std::lock_guard const lock(mutex);
    auto const place = things_.find(id);
    return place == things_.end() ? nullptr : place->second;
}

template <class Listener>
void Domain::run(Thing_ptr const& thing, Listener const& listener) {
    {
        std::lock_guard const lock(mutex);
        if (thing->gone) {
            return;
        }
        ++thing->listeners_running;
    }
    {
        std::lock_guard const lock(thing->one_listener);
        listener();
    }
    std::lock_guard const lock(mutex);
    --thing->listeners_running;
    listener_ended_.notify_all();
}

void Domain::run(Calls const& calls) {
    for (auto const& call : calls) {
        call();
    }
}

bool Domain::may_match(Thing const& left, Thing const& right) const {
    auto const is_apart = lost_.count(left.owner().id) + lost_.count(right.owner().id) != 0;
    return left.topic == right.topic && left.partition == right.partition && !left.gone && !right.gone &&
           (&left.owner() == &right.owner() || !is_apart);
}

void Domain::tell_matched(Thing_ptr const& thing, Calls& calls) {
    if (thing->on_writer != nullptr) {
        calls.emplace_back(
            [this, thing] { run(thing, [&] { thing->on_writer(thing->id, {}, thing->matched_argument); }); });
    }
    if (thing->on_reader != nullptr) {
        calls.emplace_back(
            [this, thing] { run(thing, [&] { thing->on_reader(thing->id, {}, thing->matched_argument); }); });
    }
}

void Domain::connect(Thing_ptr const& writer, Thing_ptr const& reader, Calls& calls) {
    if (!writer->matched.emplace(reader->id, reader).second) {
        return;
    }
    reader->matched.emplace(writer->id, writer);
    ++writer->times_matched;
    ++reader->times_matched;
    tell_matched(writer, calls);
    tell_matched(reader, calls);
    if (writer->keeps && reader->keeps) {
        for (auto const& [key, sample] : writer->instances) {
            deliver(reader, {sample, DDS_IST_ALIVE, static_cast<dds_instance_handle_t>(writer->id)}, calls);
        }
    }
}

bool Domain::has_instance(Thing const& reader, std::string const& key) const {
    return std::any_of(reader.matched.begin(), reader.matched.end(),
                       [&](auto const& writer) { return writer.second->instances.count(key) != 0; });
}

void Domain::disconnect(Thing_ptr const& writer, Thing_ptr const& reader, Calls& calls) {
    if (writer->matched.erase(reader->id) == 0) {
        return;
    }
    reader->matched.erase(writer->id);
    tell_matched(writer, calls);
    tell_matched(reader, calls);
    for (auto const& [key, sample] : writer->instances) {
        if (sample.type->m_nkeys != 0 && !has_instance(*reader, key)) {
            deliver(reader,
                    {key_alone(sample), DDS_IST_NOT_ALIVE_NO_WRITERS, static_cast<dds_instance_handle_t>(writer->id)},
                    calls);
        }
    }
}

void Domain::remove(dds_entity_t id) {
    Calls calls;
    {
        std::unique_lock lock(mutex);
        std::vector<Thing_ptr> going;
        for (auto const& [other_id, thing] : things_) {
            if (other_id == id || (thing->parent && thing->parent->gone)) {
                thing->gone = true;
                going.push_back(thing);
            }
        }
        for (auto const& thing : going) {
            for (auto const& [other_id, other] : std::map<dds_entity_t, Thing_ptr>(thing->matched)) {
                thing->is_writer ? disconnect(thing, other, calls) : disconnect(other, thing, calls);
            }
            things_.erase(thing->id);
            listener_ended_.wait(lock, [&thing] { return thing->listeners_running == 0; });
        }
    }
    run(calls);
}

template <class Action>
void Domain::for_pairs_of(dds_entity_t participant, Action const& action) {
    for (auto const& [writer_id, writer] : things_) {
        for (auto const& [reader_id, reader] : things_) {
            auto const concerned = (writer->owner().id == participant) != (reader->owner().id == participant);
            if (writer->is_writer && reader->is_reader && concerned) {
                action(writer, reader);
            }
        }
    }
}

std::vector<dds_entity_t> Domain::participants() {
    std::vector<dds_entity_t> all;
    std::lock_guard const lock(mutex);
    for (auto const& [id, thing] : things_) {
        if (thing->is_participant) {
            all.push_back(id);
        }
    }
    return all;
}

void Domain::lose(dds_entity_t participant) {
    Calls calls;
    {
        std::lock_guard const lock(mutex);
        lost_.insert(participant);
        for_pairs_of(participant, [&](auto const& writer, auto const& reader) { disconnect(writer, reader, calls); });
    }
    run(calls);
}

void Domain::find(dds_entity_t participant) {
    Calls calls;
    {
        std::lock_guard const lock(mutex);
        lost_.erase(participant);
        for_pairs_of(participant, [&](auto const& writer, auto const& reader) {
            if (may_match(*writer, *reader)) {
                connect(writer, reader, calls);
            }
        });
    }
    run(calls);
}

// In the order in which it is called, under the domain's mutex.
void Domain::deliver(Thing_ptr const& reader, Arrival arrival, Calls& calls) {
    reader->arrived.push_back(std::move(arrival));
    calls.emplace_back([this, reader] { run(reader, [&] { reader->on_data(reader->id, reader->data_argument); }); });
}

bool is_admitted(Thing const& reader, Arrival const& arrival) {
    auto const info = info_of(arrival);
    if (reader.filter.f.sample_sampleinfo_arg == nullptr || !info.valid_data) {
        return true;
    }
    std::unique_ptr<void, void (*)(void*)> const sample(dds_alloc(arrival.sample.type->m_size), dds_free);
    unpack(arrival.sample, sample.get());
    auto const is_let_in = reader.filter.f.sample_sampleinfo_arg(sample.get(), &info, reader.filter.arg);
    dds_sample_free(sample.get(), arrival.sample.type, DDS_FREE_CONTENTS);
    return is_let_in;
}

bool Domain::take(Thing_ptr const& reader, Arrival& arrival) {
    do {
        std::lock_guard const lock(mutex);
        if (reader->arrived.empty()) {
            return false;
        }
        arrival = std::move(reader->arrived.front());
        reader->arrived.pop_front();
    } while (!is_admitted(*reader, arrival));
    return true;
}

void Domain::write(Thing_ptr const& writer, Packed const& sample) {
    Calls calls;
    {
        std::lock_guard const lock(mutex);
        writer->instances[sample.key] = sample;
        Arrival const arrival{sample, DDS_IST_ALIVE, static_cast<dds_instance_handle_t>(writer->id)};
        for (auto const& [id, reader] : writer->matched) {
            deliver(reader, arrival, calls);
        }
    }
    run(calls);
}

void Domain::end(Thing_ptr const& writer, Packed const& key, dds_instance_state_t state) {
    Calls calls;
    {
        std::lock_guard const lock(mutex);
        auto const was_there = writer->instances.erase(key.key) != 0;
        Arrival const arrival{key_alone(key), state, static_cast<dds_instance_handle_t>(writer->id)};
        for (auto const& [id, reader] : writer->matched) {
            if (state == DDS_IST_NOT_ALIVE_DISPOSED || (was_there && !has_instance(*reader, key.key))) {
                deliver(reader, arrival, calls);
            }
        }
    }
    run(calls);
}

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

// As the engine does with what it gets from the network.
bool is_sample(dds_topic_descriptor_t const& type, std::string& octets) {
    std::uint32_t read = 0;
    return dds_stream_normalize_data(octets.data(), &read, static_cast<std::uint32_t>(octets.size()), false, k_xcdr2,
                                     type.m_ops) != nullptr;
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
    if (!thing || !is_sample(*thing->type, octets)) {
        return false;
    }
    Packed packed{thing->type, std::move(octets), {}, now()};
    std::unique_ptr<void, void (*)(void*)> const sample(dds_alloc(thing->type->m_size), dds_free);
    unpack(packed, sample.get());
    packed.key = key_of(*thing->type, sample.get());
    dds_sample_free(sample.get(), thing->type, DDS_FREE_CONTENTS);
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
