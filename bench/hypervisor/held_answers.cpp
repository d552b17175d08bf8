#include "bench/hypervisor/held_answers.h"

#include <utility>

namespace bench::hypervisor {

void Held_answers::give_after(std::chrono::milliseconds delay, std::function<void()> answer) {
    if (delay.count() == 0) {
        answer();
        return;
    }
    std::uint64_t const number = next_++;
    held_[number] = std::move(answer);
    loop_.after(delay, [this, number] { give(number); });
}

void Held_answers::give(std::uint64_t number) {
    auto held = held_.extract(number);
    if (!held.empty()) {
        held.mapped()();
    }
}

void Held_answers::give_all_now() {
    while (!held_.empty()) {
        give(held_.begin()->first);
    }
}

}  // namespace bench::hypervisor
