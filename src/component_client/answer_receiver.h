#ifndef COMPONENT_CLIENT_ANSWER_RECEIVER_H
#define COMPONENT_CLIENT_ANSWER_RECEIVER_H

#include "component_client/answer.h"

#include <cstdint>
#include <string>

namespace component_client {

/// Receives answers from any thread.
class Answer_receiver {
 public:
    virtual ~Answer_receiver() = default;

    /// `request` is the client's own count of requests, over all its connections. `reached` may be null for the state
    /// that the client is in. False when nobody waits for the answer any more.
    virtual bool put_answer(std::uint64_t request, Status status, std::string const* reached) = 0;
};

}  // namespace component_client

#endif
