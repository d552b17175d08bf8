#ifndef ARA_COM_DDS_CALLS_REPLY_WRITERS_H
#define ARA_COM_DDS_CALLS_REPLY_WRITERS_H

#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/entities/matched.h"
#include "ara/com/service_type.h"
#include "base/mutex.h"

#include <map>
#include <memory>
#include <vector>

namespace ara::com::dds {

/// The way back to each client of one instance: a writer in a partition of its own, which is named by the client's
/// request writer. So a reply goes to one client only, and a client that does not read holds up no other. There are 128
/// at most; a client that comes later gets one, and so its first reply, when another has gone. Thread-safe.
class Reply_writers {
 public:
    Reply_writers(Participant& participant, Topic_type const& reply) : participant_(participant), reply_(reply) {}

    /// Makes a writer for each client whose requests the reader gets, and gives up those of clients that have gone.
    /// Throws `tarq::com::Infrastructure_exception` when one can't be made; the others are there all the same.
    void follow(dds_entity_t requests);

    /// Sends a reply to the client that sent a request; to nobody when it has gone. Bounded in time. Throws
    /// `tarq::com::Infrastructure_exception`.
    void send(dds_entity_t requests, dds_instance_handle_t client, void const* reply);

    /// Gives up all; from then on nothing is made nor sent.
    void close();

 private:
    class Way;
    using Ways = std::map<dds_instance_handle_t, std::shared_ptr<Way>>;

    std::shared_ptr<Way> way_to(dds_instance_handle_t client);
    bool is_full();
    void add_those_of(std::vector<Peer> const& clients) REQUIRES(mutex_);
    void tell_once() REQUIRES(mutex_);

    Participant& participant_;
    Topic_type const reply_;
    base::Mutex mutex_;
    Ways ways_ GUARDED_BY(mutex_);
    bool closed_ GUARDED_BY(mutex_){false};
    bool told_ GUARDED_BY(mutex_){false};  // that there are too many
};

}  // namespace ara::com::dds

#endif
