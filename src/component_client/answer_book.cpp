#include "component_client/answer_book.h"

#include <utility>

namespace component_client {

using utilities::Type_length_value;

std::uint64_t Answer_book::open(std::uint32_t number) {
    base::Lock_guard const lock(mutex_);
    number_ = number;
    is_answered_ = false;
    is_awaited_ = true;
    return ++newest_;
}

void Answer_book::forget_requests() {
    base::Lock_guard const lock(mutex_);
    is_awaited_ = false;
    messages_.clear();
}

// An answer that nobody waits for still says in which state the client is, unless a newer request has taken over.
bool Answer_book::put_answer(std::uint64_t request, Status status, std::string const* reached) {
    base::Lock_guard const lock(mutex_);
    if (request != newest_ || is_answered_) {
        return false;
    }
    is_answered_ = true;
    if (reached != nullptr) {
        state_ = *reached;
    }
    if (!is_awaited_) {
        return false;
    }
    messages_.push_back(
        {Type_length_value(number_), Type_length_value(state_), Type_length_value(static_cast<std::uint32_t>(status))});
    bell_.ring();
    return true;
}

std::vector<utilities::Type_length_values> Answer_book::take_messages() {
    base::Lock_guard const lock(mutex_);
    return std::exchange(messages_, {});
}

std::string Answer_book::state() const {
    base::Lock_guard const lock(mutex_);
    return state_;
}

void Answer_book::set_state(std::string const& state) {
    base::Lock_guard const lock(mutex_);
    state_ = state;
}

}  // namespace component_client
