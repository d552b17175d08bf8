// `Caller` uses this under its mutex: `add` on the thread that calls, `take` on the engine's when the reply has come,
// `lose` and `take_all` on the engine's strand when the server is lost or has gone, `take_late` on the timer's thread.
// What was taken is ended without the mutex.

#include "ara/com/dds/calls/pending_calls.h"

#include <algorithm>
#include <utility>

namespace ara::com::dds {

std::int64_t Pending_calls::add(std::unique_ptr<Pending_reply> reply, Clock::time_point deadline) {
    calls_[++last_number_] = {std::move(reply), deadline, false};
    return last_number_;
}

std::unique_ptr<Pending_reply> Pending_calls::take(std::int64_t number) {
    auto const call = calls_.find(number);
    if (call == calls_.end()) {
        return nullptr;
    }
    auto reply = std::move(call->second.reply);
    calls_.erase(call);
    return reply;
}

Pending_calls::Replies Pending_calls::take_all() {
    Replies all;
    for (auto& [number, call] : calls_) {
        all.push_back(std::move(call.reply));
    }
    calls_.clear();
    return all;
}

void Pending_calls::lose(Clock::time_point deadline) {
    for (auto& [number, call] : calls_) {
        if (deadline < call.deadline) {
            call.deadline = deadline;
            call.lost = true;
        }
    }
}

Pending_calls::Late Pending_calls::take_late(Clock::time_point now) {
    Late late;
    for (auto call = calls_.begin(); call != calls_.end();) {
        if (call->second.deadline <= now) {
            (call->second.lost ? late.lost : late.unanswered).push_back(std::move(call->second.reply));
            call = calls_.erase(call);
        } else {
            ++call;
        }
    }
    return late;
}

std::optional<Clock::time_point> Pending_calls::next_deadline() const {
    auto const earlier = [](auto const& left, auto const& right) {
        return left.second.deadline < right.second.deadline;
    };
    auto const next = std::min_element(calls_.begin(), calls_.end(), earlier);
    return next == calls_.end() ? std::nullopt : std::make_optional(next->second.deadline);
}

void fail_all(Pending_calls::Replies const& replies, std::exception_ptr const& cause) {
    for (auto const& reply : replies) {
        reply->fail(cause);
    }
}

}  // namespace ara::com::dds
