#ifndef ARA_COM_DDS_CALLS_RECENT_REQUESTS_H
#define ARA_COM_DDS_CALLS_RECENT_REQUESTS_H

#include "ara/com/dds/entities/guid.h"
#include "rpc_headers.h"

#include <cstdint>
#include <deque>
#include <map>

#include <dds/dds.h>

namespace ara::com::dds {

/// The requests that one instance has had lately, so that none is handled twice. A client that is lost on this side
/// alone and found again sends once more what it does not know to have arrived; such a sample has the number and the
/// time of writing of the first. The last 256 requests of a client are known, and the last 128 clients. Not
/// thread-safe.
class Recent_requests {
 public:
    /// Whether a request comes for the first time; from then on it is known.
    bool is_new(dds_SampleIdentity const& request, dds_time_t written);

 private:
    struct Request {
        std::int64_t number;
        dds_time_t written;
    };
    struct Client {
        std::deque<Request> requests;
        std::int64_t greatest_number{0};
        std::uint64_t last_request{0};  // among those of all clients
    };

    void make_room();

    std::map<Guid, Client> clients_;
    std::uint64_t count_{0};
};

}  // namespace ara::com::dds

#endif
