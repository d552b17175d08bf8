#include "bench/hypervisor/fault_plan.h"

namespace bench::hypervisor {

void Fault_plan::add(Operation operation, Fault const& fault, std::uint64_t count) {
    if (count > 0) {
        planned_[operation].push_back({fault, count});
    }
}

Fault Fault_plan::take(Operation operation) {
    auto const found = planned_.find(operation);
    if (found == planned_.end()) {
        return {};
    }
    std::deque<Planned>& queue = found->second;
    Fault const fault = queue.front().fault;
    if (--queue.front().left == 0) {
        queue.pop_front();
    }
    if (queue.empty()) {
        planned_.erase(found);
    }
    return fault;
}

bool Fault_plan::has(Operation operation) const {
    return planned_.count(operation) != 0;
}

}  // namespace bench::hypervisor
