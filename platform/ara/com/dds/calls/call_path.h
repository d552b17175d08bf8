#ifndef ARA_COM_DDS_CALLS_CALL_PATH_H
#define ARA_COM_DDS_CALLS_CALL_PATH_H

#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/entities/guid.h"
#include "ara/com/service_type.h"
#include "rpc_headers.h"

#include <cstdint>
#include <string>

namespace ara::com::dds {

/// A client's request writer and reply reader for one instance: requests go to the instance's partition, replies come
/// in the one that is named by this writer. Thread-safe.
class Call_path {
 public:
    /// The handlers as for readers and writers. Throws `tarq::com::Infrastructure_exception`.
    Call_path(Participant& participant, Service_type const& type, std::string instance, Received_handler received,
              Matched_handler const& matched);

    /// Whether requests and replies are connected with a server in that participant.
    bool reaches(Guid const& server) const;

    /// Fills the request's header and sends it. Throws `tarq::com::Infrastructure_exception`.
    void send(void* request, std::int64_t number) const;

    /// The number of the request that a reply answers; 0 for a reply to somebody else.
    std::int64_t number_of(dds_rpc_ReplyHeader const& header) const;

 private:
    std::string const instance_;
    Writer const requests_;
    Guid const identity_;  // of the request writer
    Reader const replies_;
};

}  // namespace ara::com::dds

#endif
