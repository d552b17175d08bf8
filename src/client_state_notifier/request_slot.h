#ifndef CLIENT_STATE_NOTIFIER_REQUEST_SLOT_H
#define CLIENT_STATE_NOTIFIER_REQUEST_SLOT_H

#include "base/mutex.h"
#include "client_state_notifier/state_change_request.h"
#include "utilities/socket.h"
#include "utilities/type_length_value.h"

#include <condition_variable>
#include <cstdint>
#include <optional>

namespace client_state_notifier {

/// The way from the callers to the server's thread: room for one request, and a socket pair that wakes the thread from
/// its poll. A wake-up is a hint: the request is taken once, and one that a newer has replaced before is gone.
class Request_slot {
 public:
    Request_slot();

    /// Callers: puts a request, over one that has not been taken yet. Never waits.
    void put(State_change_request request);

    /// Callers: ends the thread.
    void stop();

    /// Thread: becomes readable with each wake-up.
    utilities::Socket const& wake_up_end() const { return wake_up_end_; }

    /// Thread: takes one wake-up from the channel; false when it says to end.
    bool receive_wake_up();

    /// Thread: the request, if there is one that was not taken yet.
    std::optional<State_change_request> take();

    /// Thread: no request has been put since the one with this number.
    bool is_newest(std::uint32_t request_number) const;

    /// Thread: waits for a request without use of the channel; nothing when the thread is to end.
    std::optional<State_change_request> wait();

 private:
    std::optional<State_change_request> take_locked() REQUIRES(mutex_);
    void wake(utilities::Type_length_values const& message) const;

    utilities::Socket wake_up_end_;
    utilities::Socket callers_end_;
    mutable base::Mutex mutex_;
    std::condition_variable_any changed_;
    std::optional<State_change_request> request_ GUARDED_BY(mutex_);
    std::uint32_t request_number_ GUARDED_BY(mutex_) = 0;  ///< of the request put last
    bool stopped_ GUARDED_BY(mutex_) = false;
};

}  // namespace client_state_notifier

#endif
