#include "notifier_model.h"

#include <utility>

namespace exploration {

void Notifier_model::request_standby() {
    requested_ = Mode::prepare_sd;
    running_ = true;
    ask(dcm);
}

void Notifier_model::request_resume() {
    requested_ = Mode::on;
    if (!std::exchange(running_, true)) {
        ask(dem);
    }
}

void Notifier_model::check() {
    if (!running_) {
        return;
    }
    if (auto const group = std::exchange(done_, std::nullopt)) {
        if (auto const next = next_after(*group)) {
            ask(*next);
        }
    }
}

void Notifier_model::answered() {
    done_ = std::exchange(asked_, std::nullopt);
    if (last_.at(*done_) == requested_ && !next_after(*done_)) {
        running_ = false;
    }
}

void Notifier_model::ask(Group group) {
    last_.at(group) = requested_;
    done_.reset();
    asked_ = group;
}

std::optional<Group> Notifier_model::next_after(Group group) const {
    if (last_.at(group) != requested_) {
        return group;  // the sequence turns back here
    }
    bool const standby = requested_ == Mode::prepare_sd;
    switch (group) {
        case dcm:
            return standby ? std::optional(applications) : std::nullopt;
        case applications:
            return standby ? dem : dcm;
        default:
            return standby ? std::nullopt : std::optional(applications);
    }
}

}  // namespace exploration
