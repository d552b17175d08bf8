#ifndef BENCH_PROCESS_MESSAGE_LOG_H
#define BENCH_PROCESS_MESSAGE_LOG_H

#include "bench/json_lines/line_splitter.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

namespace bench {

/// The JSON lines that a player has sent, read from its output when somebody waits for one. Lines that are no JSON
/// objects are left out.
class Message_log {
 public:
    using Condition = std::function<bool(nlohmann::json const&)>;

    /// The descriptor stays the caller's.
    explicit Message_log(int descriptor) : descriptor_(descriptor) {}

    /// Waits for a message that fulfils the condition and returns it, the oldest one from position `from` on. Nothing
    /// when none has come within the time, or when the player has closed its output.
    std::optional<nlohmann::json> await(Condition const& condition, std::chrono::milliseconds limit,
                                        std::size_t from = 0);

    /// Takes in what has arrived without waiting.
    std::vector<nlohmann::json> const& messages();

 private:
    bool receive(std::chrono::milliseconds limit);

    int descriptor_;
    Line_splitter lines_;
    std::vector<nlohmann::json> messages_;
};

}  // namespace bench

#endif
