#ifndef ARA_COM_DDS_CALLS_REPLY_WRITERS_H
#define ARA_COM_DDS_CALLS_REPLY_WRITERS_H

#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/entities/matched.h"
#include "ara/com/service_type.h"
#include "base/mutex.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace ara::com::dds {

/// The way back to each client of one instance: a writer in a partition of its own, which is named by the client's
/// request writer. So a reply goes to one client only, and a client that does not read holds up no other. There are 128
/// at most; a client that comes later gets one, and so its first reply, when another has gone. Thread-safe.
class Reply_writers {
 public:
    /// `reader_came` is called on the engine's threads when a client's reader became known or went, also while a writer
    /// is being made; `send_kept` is to follow, not on the same thread.
    Reply_writers(Participant& participant, Topic_type const& reply, Matched_handler reader_came)
        : participant_(participant), reply_(reply), reader_came_(std::move(reader_came)) {}

    /// Makes a writer for each client whose requests the reader gets, and gives up those of clients that have gone.
    /// Throws `tarq::com::Infrastructure_exception` when one can't be made; the others are there all the same.
    void follow(dds_entity_t requests);

    /// Sends a reply to the client that sent a request; to nobody when it has gone. While the client's reader is not
    /// known, up to 16 replies are kept: their octets, and `contents`, which their pointers look at. Bounded in time.
    /// Throws `tarq::com::Infrastructure_exception`. One thread at a time, this or `send_kept`.
    void send(dds_entity_t requests, dds_instance_handle_t client, void const* reply,
              std::shared_ptr<void const> contents);

    /// Sends what was kept for those whose readers are known now. Throws as `send`.
    void send_kept();

    /// Gives up all; from then on nothing is made nor sent.
    void close();

 private:
    class Way;
    using Ways = std::map<dds_instance_handle_t, std::shared_ptr<Way>>;

    std::shared_ptr<Way> way_to(dds_instance_handle_t client);
    std::vector<std::shared_ptr<Way>> all();
    bool is_full();
    void add_those_of(std::vector<Peer> const& clients) REQUIRES(mutex_);
    void tell_once() REQUIRES(mutex_);

    Participant& participant_;
    Topic_type const reply_;
    Matched_handler const reader_came_;
    base::Mutex mutex_;
    Ways ways_ GUARDED_BY(mutex_);
    bool closed_ GUARDED_BY(mutex_){false};
    bool told_ GUARDED_BY(mutex_){false};  // that there are too many
};

}  // namespace ara::com::dds

#endif
