// The check of a configuration on any bytes: it throws nothing, says of each file what the daemon's parser says, and
// names a reason for each that is refused.
#include "require.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "tools/check_config/check.h"

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using ximo::ap::statemanager::config::State_manager_json_parser;
    int const descriptor = ::memfd_create("fuzz", MFD_CLOEXEC);
    require(::write(descriptor, data, size) == static_cast<ssize_t>(size));
    statectl::check_config::Question question;
    question.file = "/proc/self/fd/" + std::to_string(descriptor);

    auto const answer = check(question);
    statectl::check_config::Config config;
    require(State_manager_json_parser::parse(question.file, config) == answer.verdict.is_parsed);
    require(answer.verdict.is_taken == answer.verdict.reason.empty());
    require(answer.verdict.is_parsed || !answer.verdict.is_taken);
    ::close(descriptor);
    return 0;
}
