#include "bench/vm/shell.h"

#include <stdexcept>

#include <poll.h>

namespace bench::vm {

namespace {

constexpr int k_poll_ms = 5;
constexpr char const* k_end = "<end ";

}  // namespace

Shell::Result Shell::run(std::string const& line, std::chrono::milliseconds limit) {
    port_.send(line + "\n");
    auto const deadline = std::chrono::steady_clock::now() + limit;
    std::string output;
    for (;;) {
        output += port_.take();
        auto const end = output.find(k_end);
        auto const close = end == std::string::npos ? end : output.find(">\n", end);
        if (close != std::string::npos) {
            if (unawaited_ == 0) {
                return {std::stoi(output.substr(end + std::char_traits<char>::length(k_end))), output.substr(0, end)};
            }
            --unawaited_;
            output.erase(0, close + 2);
            continue;
        }
        if (!port_.is_open() || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error(
                std::string("The machine did not end in time: ").append(line).append("\n").append(output));
        }
        pollfd source{port_.descriptor(), POLLIN, 0};
        ::poll(&source, 1, k_poll_ms);
        meanwhile_();
    }
}

void Shell::start(std::string const& line) {
    port_.send(line + "\n");
    ++unawaited_;
}

}  // namespace bench::vm
