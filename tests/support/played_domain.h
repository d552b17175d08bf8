#ifndef TESTS_SUPPORT_PLAYED_DOMAIN_H
#define TESTS_SUPPORT_PLAYED_DOMAIN_H

#include "support/played_sample.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <dds/dds.h>

namespace test_support::played_dds {

struct Thing;
using Thing_ptr = std::shared_ptr<Thing>;

/// Any entity. What is not const is guarded by the domain's mutex.
struct Thing {
    dds_entity_t id{0};
    Thing_ptr parent;
    Thing_ptr participant;  // null for itself
    bool gone{false};
    int listeners_running{0};
    std::mutex one_listener;  // at a time, and who is called later sees what came later

    dds_topic_descriptor_t const* type{nullptr};
    std::string topic;
    std::string partition;
    dds_topic_filter filter{};

    bool is_participant{false};

    // Of readers and writers.
    bool is_reader{false};
    bool is_writer{false};
    bool keeps{false};
    dds_on_data_available_fn on_data{nullptr};
    dds_on_subscription_matched_fn on_writer{nullptr};
    dds_on_publication_matched_fn on_reader{nullptr};
    void* data_argument{nullptr};
    void* matched_argument{nullptr};
    std::map<dds_entity_t, Thing_ptr> matched;
    unsigned times_matched{0};
    std::map<std::string, Packed> instances;  // of a writer, by key
    std::deque<Arrival> arrived;

    Thing const& owner() const { return participant ? *participant : *this; }
};

using Call = std::function<void()>;
using Calls = std::vector<Call>;

/// All entities of the process: who matches whom, and what goes from writers to readers.
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
    void deliver(Thing_ptr const& reader, Arrival arrival, Calls& calls);
    bool has_instance(Thing const& reader, std::string const& key) const;
    template <class Action>
    void for_pairs_of(dds_entity_t participant, Action const& action);

    std::map<dds_entity_t, Thing_ptr> things_;
    std::set<dds_entity_t> lost_;
    dds_entity_t last_id_{0};
    std::condition_variable listener_ended_;
};

/// The only one; never destroyed: parts of a program may end after static objects have.
Domain& domain();

}  // namespace test_support::played_dds

#endif
