#include "bench/vehicle/dlt_message.h"

#include "bench/json_lines/clock.h"

#include <array>
#include <cstring>

#include <dlt/dlt_common.h>

namespace bench::vehicle {

namespace {

constexpr std::int64_t k_ns_per_tick = 100'000;  // DLT counts 0.1 ms

bool is_log_message(DltMessage const& message) {
    return DLT_IS_HTYP_UEH(message.standardheader->htyp) &&
           DLT_GET_MSIN_MSTP(message.extendedheader->msin) == DLT_TYPE_LOG;
}

std::string id_in(char const* field) {
    return {field, ::strnlen(field, DLT_ID_SIZE)};
}

}  // namespace

std::optional<Event> to_event(sDltMessage& message) {
    if (!is_log_message(message)) {
        return std::nullopt;
    }
    std::array<char, 10'024> text{};
    ::dlt_message_payload(&message, text.data(), text.size(), DLT_OUTPUT_ASCII, 0);
    Event event{monotonic_ns(), Kind::log, text.data()};
    if (DLT_IS_HTYP_WTMS(message.standardheader->htyp)) {
        event.time = static_cast<std::int64_t>(message.headerextra.tmsp) * k_ns_per_tick;
    }
    event.level = DLT_GET_MSIN_MTIN(message.extendedheader->msin);
    event.context = id_in(message.extendedheader->ctid);
    event.application = id_in(message.extendedheader->apid);
    return event;
}

}  // namespace bench::vehicle
