// Whoever changes something collects the listeners to be called under the domain's mutex and calls them without it.
#include "support/played_domain.h"

#include <algorithm>
#include <utility>

namespace test_support::played_dds {

namespace {

// Nothing may be thrown through the engine.
bool is_admitted(Thing const& reader, Arrival const& arrival) noexcept {
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

}  // namespace

Domain& domain() {
    static auto& instance = *new Domain();
    return instance;
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

}  // namespace test_support::played_dds
