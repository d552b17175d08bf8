#include "bench/hypervisor/control_file.h"

#include <algorithm>

namespace bench::hypervisor {

Request const& Control_file::write(std::string_view bytes, std::int64_t offset, std::int64_t time) {
    Fault const fault = faults_.take(Operation::write);
    Request request;
    request.number = ++requests_;
    request.time = time;
    request.offset = offset;
    request.bytes = bytes;
    request.error = fault.error;
    request.accepted = fault.error != 0 ? 0 : std::min(bytes.size(), fault.accepted_bytes.value_or(bytes.size()));
    request.delay = fault.delay;
    if (journal_.size() == k_journal_length) {
        journal_.pop_front();
    }
    return journal_.emplace_back(std::move(request));
}

}  // namespace bench::hypervisor
