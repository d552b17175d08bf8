// A call that was brought to the loop's thread is told and answered there: at once, after the delay that the reactions
// say, or never. What `close` finds unanswered ends with an exception.

#include "bench/network/pending_calls.h"

#include "base/hex.h"

namespace bench::network {

void Pending_calls::tell(std::string const& method, Bits const& bytes) {
    loop_.event("call", {{"method", method}, {"bytes", base::to_hex(bytes)}});
}

void Pending_calls::answer(Call_reaction const& reaction, Answering answering) {
    if (!reaction.silent && reaction.delay.count() == 0) {
        answering();
        return;
    }
    auto const kept = std::make_shared<Answering>(std::move(answering));
    unanswered_.insert(kept);
    if (!reaction.silent) {
        loop_.after(reaction.delay, [this, waiting = std::weak_ptr<Answering>(kept)] {
            if (auto const due = waiting.lock()) {
                unanswered_.erase(due);
                (*due)();
            }
        });
    }
}

void Pending_calls::close() {
    queue_.close();
    unanswered_.clear();
}

}  // namespace bench::network
