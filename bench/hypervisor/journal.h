#ifndef BENCH_HYPERVISOR_JOURNAL_H
#define BENCH_HYPERVISOR_JOURNAL_H

#include "bench/hypervisor/control_file.h"

#include <nlohmann/json.hpp>
#include <string>

namespace bench::hypervisor {

/// A request as events and the journal show it: "file", "number", "t", "offset", "text", "hex" where the bytes are no
/// readable text, "written" or "errno", and "delay_ms" where it is slow.
nlohmann::json describe(std::string const& file, Request const& request);

/// Details of an event with the error's name as "errno"; as they are when the error is 0.
nlohmann::json with_error(nlohmann::json details, int error);

}  // namespace bench::hypervisor

#endif
