#ifndef CLIENT_STATE_NOTIFIER_REQUEST_SLOT_H
#define CLIENT_STATE_NOTIFIER_REQUEST_SLOT_H

#include "base/mutex.h"
#include "client_state_notifier/state_change_request.h"
#include "client_state_notifier/surroundings.h"
#include "utilities/frame_assembler.h"
#include "utilities/type_length_value.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace client_state_notifier {

/// The way from the callers to the server's thread: room for one request, and two ways to wake the thread from its
/// poll: a socket pair, which carries a word for what is to be done, and a bell for when the system refuses the word. A
/// wake-up is a hint: the request is taken once, and one that a newer has replaced before is gone.
class Request_slot {
 public:
    /// The surroundings must outlive the slot.
    explicit Request_slot(Surroundings& surroundings = machine_surroundings());

    /// Callers: puts a request, over one that has not been taken yet. Never waits. False when the thread can't be
    /// woken; then the request is out again, as if it had been put and replaced.
    bool put(State_change_request request);

    /// Callers: ends the thread.
    void stop();

    /// Thread: becomes readable with each wake-up.
    utilities::Socket const& wake_up_end() const { return wake_up_end_; }

    /// Thread: becomes readable when a word could not be sent, and at the end.
    Wake_up_bell const& bell() const { return *bell_; }

    /// Thread: takes the wake-ups that have come through the channel, in one call; false when the first says to end.
    bool receive_wake_up();

    /// Thread: takes all wake-ups from both ways without a look at them, so that a channel that a failure left in the
    /// middle of a word begins with a word again. A request that was put stays.
    void forget_wake_ups();

    /// Thread: it is to end.
    bool is_stopped() const;

    /// Thread: the request, if there is one that was not taken yet.
    std::optional<State_change_request> take();

    /// Thread: no request has been put since the one with this number.
    bool is_newest(std::uint32_t request_number) const;

    /// Thread: waits for a request without use of the channel; nothing when the thread is to end, or when the time has
    /// come first.
    std::optional<State_change_request> wait(std::chrono::steady_clock::time_point end);

 private:
    Request_slot(std::pair<utilities::Socket, utilities::Socket> channel, Surroundings& surroundings);

    std::optional<State_change_request> take_locked() REQUIRES(mutex_);
    bool send(utilities::Type_length_values const& message) const;
    bool withdraw(std::uint32_t request_number);

    utilities::Socket wake_up_end_;
    utilities::Socket callers_end_;
    std::unique_ptr<Wake_up_bell> bell_;
    utilities::Frame_assembler words_;    ///< thread: what has come through the channel
    utilities::Type_length_values word_;  ///< thread: the last one, for its memory
    mutable base::Mutex mutex_;
    std::condition_variable_any changed_;
    std::optional<State_change_request> request_ GUARDED_BY(mutex_);
    std::uint32_t request_number_ GUARDED_BY(mutex_){0};  ///< of the request put last
    bool stopped_ GUARDED_BY(mutex_){false};
};

}  // namespace client_state_notifier

#endif
