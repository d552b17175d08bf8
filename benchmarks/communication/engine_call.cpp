// A call on the engine's C interface and nothing else, with as many hand-overs between threads as a call of a service
// has: on either side the thread that receives hands the sample to another one.

#include "benchmarks/communication/yardsticks.h"
#include "octets.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>

#include <dds/dds.h>

namespace benchmarks {

namespace {

// Not the binding's, which has a domain of its own in the same process.
constexpr dds_domainid_t k_domain = 7;

constexpr char const* k_there = "benchmark_there";
constexpr char const* k_back = "benchmark_back";

dds_entity_t checked(dds_entity_t result, char const* what) {
    if (result < 0) {
        throw std::runtime_error(std::string(what) + ": " + dds_strretcode(result));
    }
    return result;
}

}  // namespace

/// One side: sends on one topic, receives on the other.
class Engine_call::Side {
 public:
    Side(std::string const& configuration, char const* to, char const* from)
        : domain_(checked(dds_create_domain(k_domain, configuration.c_str()), "domain")),
          participant_(checked(dds_create_participant(k_domain, nullptr, nullptr), "participant")) {
        auto* const quality = dds_create_qos();
        dds_qset_reliability(quality, DDS_RELIABILITY_RELIABLE, DDS_SECS(1));
        dds_qset_history(quality, DDS_HISTORY_KEEP_ALL, 0);
        auto* const listener = dds_create_listener(this);
        dds_lset_data_available(listener, on_data);
        writer_ = checked(dds_create_writer(participant_, topic(to), quality, nullptr), "writer");
        reader_ = checked(dds_create_reader(participant_, topic(from), quality, listener), "reader");
        dds_delete_listener(listener);
        dds_delete_qos(quality);
    }
    ~Side() { dds_delete(domain_); }
    Side(Side const&) = delete;
    Side& operator=(Side const&) = delete;

    void send() const {
        benchmarks_Octets const octets{};
        checked(dds_write(writer_, &octets), "write");
    }

    void receive() {
        std::unique_lock<std::mutex> lock(mutex_);
        arrived_.wait(lock, [this] { return count_ > 0; });
        --count_;
    }

    bool is_connected() const {
        dds_publication_matched_status_t there{};
        dds_subscription_matched_status_t back{};
        dds_get_publication_matched_status(writer_, &there);
        dds_get_subscription_matched_status(reader_, &back);
        return there.current_count > 0 && back.current_count > 0;
    }

 private:
    dds_entity_t topic(char const* name) const {
        return checked(dds_create_topic(participant_, &benchmarks_Octets_desc, name, nullptr, nullptr), name);
    }

    static void on_data(dds_entity_t reader, void* self) { static_cast<Side*>(self)->take(reader); }

    void take(dds_entity_t reader) {
        benchmarks_Octets octets;
        void* place = &octets;
        dds_sample_info_t info;
        while (dds_take(reader, &place, &info, 1, 1) == 1) {
            std::unique_lock<std::mutex> lock(mutex_);
            count_ += info.valid_data ? 1 : 0;
            lock.unlock();
            arrived_.notify_one();
        }
    }

    dds_entity_t const domain_;
    dds_entity_t const participant_;
    dds_entity_t writer_{0};
    dds_entity_t reader_{0};
    std::mutex mutex_;
    std::condition_variable arrived_;
    int count_{0};
};

Engine_call::Engine_call(std::string const& configuration)
    : side_(std::make_unique<Side>(configuration, k_there, k_back)) {
    while (!side_->is_connected()) {
        dds_sleepfor(DDS_MSECS(1));
    }
}

Engine_call::~Engine_call() = default;

void Engine_call::operator()() const {
    side_->send();
    side_->receive();
}

void serve_engine(std::string const& configuration, std::function<void()> const& ready) {
    Engine_call::Side side(configuration, k_back, k_there);
    ready();
    for (;;) {
        side.receive();
        side.send();
    }
}

}  // namespace benchmarks
