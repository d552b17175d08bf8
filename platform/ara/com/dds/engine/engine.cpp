#include "ara/com/dds/engine/engine.h"

#include "ara/com/dds/threads/started_thread.h"
#include "tarq/com/exception.h"

#include <algorithm>
#include <utility>

namespace ara::com::dds {

Engine::Engine()
    : strand_(std::make_shared<Strand>(workers_)),
      participant_(std::make_unique<Participant>()),
      announcer_(std::make_unique<Announcer>(*participant_)),
      offers_(std::make_shared<Known_offers>(*participant_, *announcer_, strand_, timer_)) {
    start_with_patience([this] { timer_.start(); });
}

Engine::Opening Engine::adopt(std::weak_ptr<Part> part) {
    base::Lock_guard const lock(mutex_);
    if (down_) {
        throw tarq::com::Infrastructure_exception("The communication runtime does not run");
    }
    auto const gone = [](auto const& known) { return known.expired(); };
    parts_.erase(std::remove_if(parts_.begin(), parts_.end(), gone), parts_.end());
    parts_.push_back(std::move(part));
    ++opening_;
    return Opening(this);
}

void Engine::opened() {
    base::Lock_guard const lock(mutex_);
    --opening_;
    changed_.notify_all();
}

Engine::Closing Engine::close_part() {
    base::Lock_guard const lock(mutex_);
    ++closing_;
    return Closing(this);
}

void Engine::closed() {
    base::Lock_guard const lock(mutex_);
    --closing_;
    changed_.notify_all();
}

void Engine::await_those_who_close() {
    base::Lock_guard const lock(mutex_);
    while (closing_ != 0) {
        changed_.wait(mutex_);
    }
}

std::vector<std::shared_ptr<Part>> Engine::refuse_new_parts() {
    std::vector<std::shared_ptr<Part>> present;
    base::Lock_guard const lock(mutex_);
    down_ = true;
    while (opening_ != 0) {
        changed_.wait(mutex_);
    }
    for (auto const& known : parts_) {
        if (auto part = known.lock()) {
            present.push_back(std::move(part));
        }
    }
    parts_.clear();
    return present;
}

// The engine's strand ends after the parts, which it may still serve, and before what it uses. Who closes a part on
// another thread may have been first and still be at it; once the workers have ended he waits for nobody.
void Engine::shut_down() {
    auto const parts = refuse_new_parts();
    for (auto const& part : parts) {
        part->release();
    }
    for (auto const& part : parts) {
        part->close();
    }
    timer_.stop();
    strand_->close();
    workers_.stop();
    await_those_who_close();
    if (offers_) {
        offers_->close();
    }
    offers_.reset();
    announcer_.reset();
    participant_.reset();
}

}  // namespace ara::com::dds
