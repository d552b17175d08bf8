#ifndef COMPONENT_CLIENT_ANSWER_BOOK_H
#define COMPONENT_CLIENT_ANSWER_BOOK_H

#include "base/bell.h"
#include "base/mutex.h"
#include "component_client/answer_receiver.h"
#include "utilities/type_length_value.h"

#include <cstdint>
#include <string>
#include <vector>

namespace component_client {

/// What the threads of a client share: its state, which request is waited for, and the answers on their way. The
/// thread that runs the client opens requests and takes answers out; any thread puts them in. It outlives the client
/// while somebody answers.
class Answer_book final : public Answer_receiver {
 public:
    explicit Answer_book(std::string state) : state_(std::move(state)) {}

    /// Rings when there is an answer to send.
    base::Bell const& bell() const { return bell_; }

    /// A request has come; the one before it is not waited for any more. Returns its count.
    std::uint64_t open(std::uint32_t number);

    /// Nobody waits for an answer any more, and those on their way are dropped: the connection is lost.
    void forget_requests();

    bool put_answer(std::uint64_t request, Status status, std::string const* reached) override;

    /// The answers to be sent, oldest first.
    std::vector<utilities::Type_length_values> take_messages();

    std::string state() const;
    void set_state(std::string const& state);

 private:
    mutable base::Mutex mutex_;
    std::string state_ GUARDED_BY(mutex_);
    std::uint64_t newest_ GUARDED_BY(mutex_){0};
    std::uint32_t number_ GUARDED_BY(mutex_){0};  ///< of the newest request
    bool is_answered_ GUARDED_BY(mutex_){true};
    bool is_awaited_ GUARDED_BY(mutex_){false};  ///< its connection is still there
    std::vector<utilities::Type_length_values> messages_ GUARDED_BY(mutex_);
    base::Bell bell_;
};

}  // namespace component_client

#endif
