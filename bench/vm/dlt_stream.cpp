#include "bench/vm/dlt_stream.h"

#include "bench/vehicle/dlt_message.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include <dlt/dlt_common.h>

namespace bench::vm {

namespace {

constexpr std::string_view k_header{"DLS\x01"};
constexpr int k_resynchronise = 1;

/// A message of libdlt's, which owns memory.
class Message {
 public:
    Message() { ::dlt_message_init(&message_, 0); }
    ~Message() { ::dlt_message_free(&message_, 0); }
    Message(Message const&) = delete;
    Message& operator=(Message const&) = delete;

    bool read(std::string_view bytes) {
        std::string copy(bytes);  // libdlt wants to be able to write
        return ::dlt_message_read(&message_, reinterpret_cast<std::uint8_t*>(copy.data()),
                                  static_cast<unsigned>(copy.size()), k_resynchronise, 0) == DLT_MESSAGE_ERROR_OK;
    }

    /// Without its serial header.
    std::size_t size() const {
        return static_cast<std::size_t>(message_.headersize + message_.datasize) - sizeof(DltStorageHeader);
    }

    sDltMessage& get() { return message_; }

 private:
    DltMessage message_{};
};

// How long a message says that it is, with its serial header; 0 when it has not said so yet.
std::size_t announced_size(std::string_view message) {
    constexpr std::size_t position = 2;  // behind the serial header, in network order
    auto const begin = k_header.size() + position;
    if (message.size() < begin + 2) {
        return 0;
    }
    return k_header.size() + std::size_t{static_cast<std::uint8_t>(message[begin])} * 256 +
           static_cast<std::uint8_t>(message[begin + 1]);
}

}  // namespace

vehicle::Timeline Dlt_stream::add(std::string_view bytes) {
    waiting_.append(bytes);
    vehicle::Timeline messages;
    for (;;) {
        auto const begin = waiting_.find(k_header);
        if (begin == std::string::npos) {
            // Perhaps the first part of a header has arrived.
            waiting_.erase(0, waiting_.size() - std::min(waiting_.size(), k_header.size() - 1));
            return messages;
        }
        waiting_.erase(0, begin);
        auto const next = waiting_.find(k_header, k_header.size());
        if (next < announced_size(waiting_)) {
            waiting_.erase(0, next);  // cut off: the next one has begun
            continue;
        }
        Message message;
        if (message.read(waiting_)) {
            if (auto event = vehicle::to_event(message.get())) {
                messages.push_back(std::move(*event));
            }
            waiting_.erase(0, k_header.size() + message.size());
        } else if (next != std::string::npos) {
            waiting_.erase(0, k_header.size());  // complete, and none
        } else {
            return messages;
        }
    }
}

}  // namespace bench::vm
