#include "told/told.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>

#include <unistd.h>

namespace told {

namespace {

// One write a line, so that lines of several threads don't mix.
void write_to_standard_error(Line const& line) {
    std::array<char, 2048> text{};
    auto* end = text.begin();
    for (auto const part : {line.whom, std::string_view(" "), line.what}) {
        auto const room = static_cast<std::size_t>(text.end() - end) - 1;
        end = std::copy_n(part.begin(), std::min(part.size(), room), end);
    }
    *end++ = '\n';
    [[maybe_unused]] auto const nobody_reads =
        ::write(STDERR_FILENO, text.data(), static_cast<std::size_t>(end - text.begin()));
}

std::atomic<Listener> current{&write_to_standard_error};

}  // namespace

void listen(Listener listener) {
    current = listener != nullptr ? listener : &write_to_standard_error;
}

void tell(Line const& line) {
    int const error = errno;
    current.load()(line);
    errno = error;
}

}  // namespace told
