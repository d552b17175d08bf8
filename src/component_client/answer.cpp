#include "component_client/answer.h"

#include "component_client/answer_receiver.h"

#include <utility>

namespace component_client {

Answer::Answer(std::weak_ptr<Answer_receiver> receiver, std::uint64_t request, std::uint32_t number, std::string state)
    : receiver_(std::move(receiver)), request_(request), number_(number), state_(std::move(state)) {}

Answer::~Answer() {
    deliver(Status::general_error, nullptr);
}

Answer& Answer::operator=(Answer&& other) noexcept {
    if (this != &other) {
        deliver(Status::general_error, nullptr);
        receiver_ = std::move(other.receiver_);
        request_ = other.request_;
        number_ = other.number_;
        state_ = std::move(other.state_);
    }
    return *this;
}

bool Answer::send(Status status) {
    return deliver(status, status == Status::succeeded ? &state_ : nullptr);
}

bool Answer::send(Status status, std::string const& reached) {
    return deliver(status, &reached);
}

bool Answer::deliver(Status status, std::string const* reached) {
    auto const receiver = std::exchange(receiver_, {}).lock();
    return receiver && receiver->put_answer(request_, status, reached);
}

}  // namespace component_client
