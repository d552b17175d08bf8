#include "bench/process/message_log.h"

#include <algorithm>
#include <array>

#include <poll.h>
#include <unistd.h>

namespace bench {

bool Message_log::receive(std::chrono::milliseconds limit) {
    pollfd entry{descriptor_, POLLIN, 0};
    if (::poll(&entry, 1, static_cast<int>(std::max<std::int64_t>(limit.count(), 0))) <= 0) {
        return false;
    }
    std::array<char, 65536> bytes{};
    ssize_t const count = ::read(descriptor_, bytes.data(), bytes.size());
    if (count <= 0) {
        return false;
    }
    lines_.add({bytes.data(), static_cast<std::size_t>(count)});
    while (auto const line = lines_.next()) {
        auto message = nlohmann::json::parse(*line, nullptr, false);
        if (message.is_object()) {
            messages_.push_back(std::move(message));
        }
    }
    return true;
}

std::optional<nlohmann::json> Message_log::await(Condition const& condition, std::chrono::milliseconds limit,
                                                 std::size_t from) {
    auto const end = std::chrono::steady_clock::now() + limit;
    for (std::size_t next = from;; ++next) {
        while (next >= messages_.size()) {
            auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
            if (!receive(left)) {
                return std::nullopt;
            }
        }
        if (condition(messages_[next])) {
            return messages_[next];
        }
    }
}

std::vector<nlohmann::json> const& Message_log::messages() {
    while (receive(std::chrono::milliseconds(0))) {
    }
    return messages_;
}

}  // namespace bench
