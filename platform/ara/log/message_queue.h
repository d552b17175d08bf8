#ifndef ARA_LOG_MESSAGE_QUEUE_H
#define ARA_LOG_MESSAGE_QUEUE_H

#include "ara/log/argument_encoder.h"
#include "ara/log/common.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace ara::log {

struct Log_context;

/// What is known of a message besides its arguments.
struct Message_header {
    Log_context const* context;
    std::uint32_t timestamp;  ///< time of the call, 0.1 ms since boot, as DLT counts
    std::uint16_t size;       ///< bytes of encoded arguments
    std::uint8_t count;       ///< number of arguments
    LogLevel level;
};

/// A message taken from the queue.
struct Queued_message {
    Message_header header{};
    std::array<char, Argument_encoder::k_capacity> arguments{};
};

/// Bounded queue of messages from any number of producers to one consumer.
///
/// A message takes as many consecutive slots as it needs. Each slot carries the sequence number of the turn in which it
/// may be written (its position) or read (its position + 1). A producer claims its slots with one compare-and-swap and
/// publishes the first of them last. The last slots are kept for messages of level info and above, so that a flood of
/// details doesn't push out what tells the story. Producers neither lock nor allocate, and a producer that is
/// interrupted by another one in the same thread (a signal handler) delays the consumer at most, never the other
/// producer.
class Message_queue {
 public:
    static constexpr std::size_t k_slots = 1024;
    static constexpr std::size_t k_slot_data = 248;
    static constexpr std::size_t k_kept_slots = k_slots / 4;  ///< that debug and verbose can't have

    Message_queue();

    /// False, and nothing queued, when there is no room. Any thread, any signal handler.
    bool push(Message_header const& header, char const* arguments) noexcept;

    /// False when no complete message waits. One thread at a time.
    bool pop(Queued_message& message) noexcept;

    /// How many slots are taken: those that a producer has claimed before, in the one order of all sequentially
    /// consistent operations, and maybe later ones.
    std::size_t size() const noexcept;

 private:
    struct alignas(64) Slot {
        std::atomic<std::uint64_t> sequence;
        std::array<char, k_slot_data> data;
    };

    Slot& slot(std::uint64_t position) noexcept { return slots_[position % k_slots]; }
    bool claim(std::uint64_t count, std::uint64_t kept, std::uint64_t& position) noexcept;
    void copy_in(std::uint64_t position, std::size_t offset, char const* data, std::size_t size) noexcept;
    void copy_out(std::uint64_t position, std::size_t offset, char* data, std::size_t size) noexcept;

    std::unique_ptr<std::array<Slot, k_slots>> storage_;
    Slot* slots_;
    alignas(64) std::atomic<std::uint64_t> head_{0};  ///< next position to be claimed
    alignas(64) std::atomic<std::uint64_t> tail_{0};  ///< next position to be read; written by the consumer alone
};

}  // namespace ara::log

#endif
