#ifndef ARA_COM_DDS_CALLS_PENDING_CALLS_H
#define ARA_COM_DDS_CALLS_PENDING_CALLS_H

#include "ara/com/binding.h"
#include "ara/com/dds/threads/call_timer.h"

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace ara::com::dds {

/// Calls that wait for their replies, by the numbers of their requests. Its user locks.
class Pending_calls {
 public:
    using Replies = std::vector<std::unique_ptr<Pending_reply>>;

    /// Returns the request's number: 1, 2, 3...
    std::int64_t add(std::unique_ptr<Pending_reply> reply, Clock::time_point deadline);

    /// Null when no call waits under the number, or no longer.
    std::unique_ptr<Pending_reply> take(std::int64_t number);

    /// The calls that wait now may do so until then at most, and are lost if nothing has come until then.
    void lose(Clock::time_point deadline);

    struct Late {
        Replies unanswered;  ///< their own time is over
        Replies lost;
    };

    Replies take_all();
    Late take_late(Clock::time_point now);
    std::optional<Clock::time_point> next_deadline() const;

 private:
    struct Call {
        std::unique_ptr<Pending_reply> reply;
        Clock::time_point deadline;
        bool lost;
    };

    std::int64_t last_number_{0};
    std::map<std::int64_t, Call> calls_;
};

/// With no lock held: it ends futures.
void fail_all(Pending_calls::Replies const& replies, std::exception_ptr const& cause);

}  // namespace ara::com::dds

#endif
