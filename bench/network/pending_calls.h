#ifndef BENCH_NETWORK_PENDING_CALLS_H
#define BENCH_NETWORK_PENDING_CALLS_H

#include "bench/json_lines/control_loop.h"
#include "bench/network/bits.h"
#include "bench/network/call_plan.h"
#include "bench/task_queue/task_queue.h"
#include "ximo/com/future.h"

#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace bench::network {

/// Brings the calls of a service from the binding's threads to the loop's thread, and their answers back, by way of the
/// plan of reactions. Every call is told as an event.
class Pending_calls {
 public:
    /// The loop must outlive this.
    explicit Pending_calls(Control_loop& loop) : loop_(loop) {
        loop_.watch(queue_.descriptor(), [this] { queue_.run_all(); });
    }

    /// On a thread of the binding. `work` is done on the loop's thread and gives the answer; what it throws is the
    /// caller's.
    template <class Answer>
    ximo::com::Future<Answer> bring(std::string const& method, Bits const& bytes, std::function<Answer()> work) {
        auto promise = std::make_shared<ximo::com::Promise<Answer>>();
        auto future = promise->get_future();
        queue_.post([this, method, bytes, promise = std::move(promise), work = std::move(work)]() mutable {
            begin(method, bytes, promise, work);
        });
        return future;
    }

    /// Whoever waits for an answer gets an exception instead, and so does everybody who calls until `open`.
    void close();
    void open() { queue_.open(); }

    Call_plan& plan() { return plan_; }

 private:
    using Answering = std::function<void()>;

    template <class Answer>
    void begin(std::string const& method, Bits const& bytes, std::shared_ptr<ximo::com::Promise<Answer>> const& promise,
               std::function<Answer()> const& work);
    void tell(std::string const& method, Bits const& bytes);
    void answer(Call_reaction const& reaction, Answering answering);

    Control_loop& loop_;
    Call_plan plan_;
    std::set<std::shared_ptr<Answering>> unanswered_;
    Task_queue queue_;
};

template <class Answer>
void Pending_calls::begin(std::string const& method, Bits const& bytes,
                          std::shared_ptr<ximo::com::Promise<Answer>> const& promise,
                          std::function<Answer()> const& work) {
    tell(method, bytes);
    auto const reaction = plan_.take(method);
    try {
        if (reaction.refuse) {
            throw std::runtime_error(method + " is refused");
        }
        if constexpr (std::is_void_v<Answer>) {
            work();
            answer(reaction, [promise] { promise->set_value(); });
        } else {
            answer(reaction, [promise, result = work()] { promise->set_value(result); });
        }
    } catch (std::exception const&) {
        promise->set_exception(std::current_exception());
    }
}

}  // namespace bench::network

#endif
