#include "ara/com/dds/calls/recent_requests.h"

#include "ara/com/dds/calls/request_number.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace ara::com::dds {

namespace {

// Each packet of requests asks for an acknowledgement, and a heartbeat after 5 ms asks again: a client that calls as
// fast as it can sends fewer in that time.
constexpr std::size_t k_most_requests = 256;

// As many as get replies.
constexpr std::size_t k_most_clients = 128;

Guid client_of(dds_SampleIdentity const& request) {
    Guid client;
    static_assert(sizeof request.writer_guid == sizeof client);
    std::memcpy(client.data(), &request.writer_guid, client.size());
    return client;
}

}  // namespace

// Clients that count need no search.
bool Recent_requests::is_new(dds_SampleIdentity const& request, dds_time_t written) {
    auto& client = clients_[client_of(request)];
    client.last_request = ++count_;
    auto const number = number_of(request.sequence_number);
    auto const is_this = [&](auto const& known) { return known.number == number && known.written == written; };
    if (number <= client.greatest_number && std::any_of(client.requests.begin(), client.requests.end(), is_this)) {
        return false;
    }
    client.greatest_number = std::max(client.greatest_number, number);
    client.requests.push_back({number, written});
    if (client.requests.size() > k_most_requests) {
        client.requests.pop_front();
    }
    make_room();
    return true;
}

void Recent_requests::make_room() {
    if (clients_.size() > k_most_clients) {
        clients_.erase(std::min_element(clients_.begin(), clients_.end(), [](auto const& left, auto const& right) {
            return left.second.last_request < right.second.last_request;
        }));
    }
}

}  // namespace ara::com::dds
