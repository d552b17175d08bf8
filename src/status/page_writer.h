#ifndef STATUS_PAGE_WRITER_H
#define STATUS_PAGE_WRITER_H

#include "status/layout.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace status {

// What the functions of driver_status.h and its likes are made of. They are called as the log is, from the place where
// it happens: each writes a few words, and neither waits, allocates nor fails.

/// The page that this process writes. Null in a process that has none, as in most tests: then those functions do
/// nothing.
Page* page();

/// The page must be there until another one is set and no thread writes any more.
void set_page(Page* page);

/// FNV-1a, 64 bits, of bytes that follow those of `before`.
constexpr std::uint64_t k_no_bytes = 0xcbf29ce484222325U;
inline std::uint64_t digest_of(std::string_view bytes, std::uint64_t before = k_no_bytes) {
    for (char const byte : bytes) {
        before = (before ^ static_cast<std::uint8_t>(byte)) * 0x100000001b3U;
    }
    return before;
}

/// CLOCK_MONOTONIC, in nanoseconds.
std::uint64_t now();

inline void put(Shared_word& word, std::uint64_t value) {
    word.store(value, std::memory_order_release);
}
template <class Number, class = std::enable_if_t<std::is_enum_v<Number>>>
void put(Shared_word& word, Number value) {
    put(word, static_cast<std::uint64_t>(value));
}

/// What the one thread that writes a word has written.
inline std::uint64_t own(Shared_word const& word) {
    return word.load(std::memory_order_relaxed);
}
inline void add(Shared_word& word, std::uint64_t more = 1) {
    put(word, own(word) + more);
}
inline void subtract(Shared_word& word, std::uint64_t less = 1) {
    put(word, own(word) - less);
}

void put_text(Shared_word* words, std::size_t count, std::string_view text);
bool is_text(Shared_word const* words, std::size_t count, std::string_view text);

template <std::size_t bytes>
void put(Text<Shared_word, bytes>& place, std::string_view text) {
    put_text(place.words.data(), place.words.size(), text);
}

/// Whether the place has the text, or what was left of it when it was put.
template <std::size_t bytes>
bool holds(Text<Shared_word, bytes> const& place, std::string_view text) {
    return is_text(place.words.data(), place.words.size(), text);
}

void put(Bits<Shared_word>& place, std::uint8_t const* bytes, std::size_t count);

/// A change of a section or record by its one writer, from here to the end of the block.
class Change {
 public:
    explicit Change(Shared_word& sequence) : sequence_(sequence) { put(sequence_, own(sequence_) + 1); }
    ~Change() { put(sequence_, own(sequence_) + 1); }
    Change(Change const&) = delete;
    Change& operator=(Change const&) = delete;

 private:
    Shared_word& sequence_;
};

struct Numbers {
    std::uint64_t first{0};
    std::uint64_t second{0};
    std::uint64_t third{0};
};

/// One more event of the thread whose ring it is, at a time that was taken for its section, too. Readers are woken by
/// the driver's next beat.
void tell(Page& page, Ring<Shared_word>& ring, std::uint64_t at, Event_kind kind, Numbers numbers,
          std::string_view text = {});

/// Wakes those who wait for events: one system call that can't wait, for the driver's thread alone.
void wake(Page& page);

}  // namespace status

#endif
