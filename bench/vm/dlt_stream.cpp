#include "bench/vm/dlt_stream.h"

#include "bench/vehicle/dlt_message.h"

#include <utility>

namespace bench::vm {

vehicle::Timeline Dlt_stream::add(std::string_view bytes) {
    reader_.add(bytes);
    vehicle::Timeline messages;
    while (auto const message = reader_.next()) {
        if (auto event = vehicle::to_event(*message)) {
            messages.push_back(std::move(*event));
        }
    }
    return messages;
}

}  // namespace bench::vm
