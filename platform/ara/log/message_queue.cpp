#include "ara/log/message_queue.h"

#include <algorithm>
#include <cstring>

namespace ara::log {

namespace {

constexpr std::uint64_t slots_for(std::size_t size) noexcept {
    return (sizeof(Message_header) + size + Message_queue::k_slot_data - 1) / Message_queue::k_slot_data;
}

}  // namespace

Message_queue::Message_queue() : storage_(std::make_unique<std::array<Slot, k_slots>>()), slots_(storage_->data()) {
    for (std::uint64_t position = 0; position < k_slots; ++position) {
        slots_[position].sequence.store(position, std::memory_order_relaxed);
    }
}

bool Message_queue::push(Message_header const& header, char const* arguments) noexcept {
    auto const count = slots_for(header.size);
    auto const kept = header.level > LogLevel::kInfo ? k_kept_slots : 0;
    std::uint64_t position = 0;
    if (!claim(count, kept, position)) {
        return false;
    }
    copy_in(position, 0, reinterpret_cast<char const*>(&header), sizeof header);
    copy_in(position, sizeof header, arguments, header.size);
    for (auto published = position + count; published-- > position;) {
        slot(published).sequence.store(published + 1, std::memory_order_release);
    }
    return true;
}

// The consumer frees slots in order, so when the last slot of the range and of those kept is free all of them are.
bool Message_queue::claim(std::uint64_t count, std::uint64_t kept, std::uint64_t& position) noexcept {
    position = head_.load(std::memory_order_relaxed);
    for (;;) {
        auto const last = position + count + kept - 1;
        auto const sequence = slot(last).sequence.load(std::memory_order_acquire);
        if (sequence == last) {
            if (head_.compare_exchange_weak(position, position + count)) {
                return true;
            }
        } else if (sequence < last) {
            return false;  // still holds a message of the turn before
        } else {
            position = head_.load(std::memory_order_relaxed);
        }
    }
}

bool Message_queue::pop(Queued_message& message) noexcept {
    auto const position = tail_.load(std::memory_order_relaxed);
    if (slot(position).sequence.load(std::memory_order_acquire) != position + 1) {
        return false;
    }
    copy_out(position, 0, reinterpret_cast<char*>(&message.header), sizeof message.header);
    copy_out(position, sizeof message.header, message.arguments.data(), message.header.size);
    auto const end = position + slots_for(message.header.size);
    for (auto freed = position; freed != end; ++freed) {
        slot(freed).sequence.store(freed + k_slots, std::memory_order_release);
    }
    tail_.store(end, std::memory_order_release);
    return true;
}

std::size_t Message_queue::size() const noexcept {
    // First, and with what the consumer saw before: so it is never ahead of the head.
    auto const tail = tail_.load(std::memory_order_acquire);
    return head_.load() - tail;
}

void Message_queue::copy_in(std::uint64_t position, std::size_t offset, char const* data, std::size_t size) noexcept {
    while (size != 0) {
        auto const within = offset % k_slot_data;
        auto const part = std::min(size, k_slot_data - within);
        std::memcpy(slot(position + offset / k_slot_data).data.data() + within, data, part);
        offset += part;
        data += part;
        size -= part;
    }
}

void Message_queue::copy_out(std::uint64_t position, std::size_t offset, char* data, std::size_t size) noexcept {
    while (size != 0) {
        auto const within = offset % k_slot_data;
        auto const part = std::min(size, k_slot_data - within);
        std::memcpy(data, slot(position + offset / k_slot_data).data.data() + within, part);
        offset += part;
        data += part;
        size -= part;
    }
}

}  // namespace ara::log
