#include "status/page_writer.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstring>

#include <endian.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace status {

namespace {

constexpr std::size_t k_word = sizeof(std::uint64_t);
constexpr std::string_view k_cut = "...";

std::atomic<Page*> g_page{nullptr};

// The text's bytes from `from` on, as a word.
std::uint64_t packed(std::string_view text, std::size_t from) {
    std::uint64_t word = 0;
    auto const left = text.size() - std::min(from, text.size());
    if (left >= k_word) {
        std::memcpy(&word, text.data() + from, k_word);
    } else if (left != 0) {
        std::memcpy(&word, text.data() + from, left);
    }
    return le64toh(word);
}

// Word number `place` of `count` for the text: what does not fit ends in dots.
std::uint64_t word_of(std::string_view text, std::size_t place, std::size_t count) {
    auto const room = count * k_word;
    bool const is_cut = text.size() > room;
    auto const word = packed(text.substr(0, room), place * k_word);
    if (!is_cut || place + 1 < count) {
        return word;
    }
    constexpr auto k_kept = k_word - k_cut.size();
    return packed(k_cut, 0) << CHAR_BIT * k_kept | (word & ((std::uint64_t{1} << CHAR_BIT * k_kept) - 1));
}

}  // namespace

Page* page() {
    return g_page.load(std::memory_order_acquire);
}

void set_page(Page* page) {
    g_page.store(page, std::memory_order_release);
}

std::uint64_t now() {
    auto const time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::nanoseconds(time).count());
}

void put_text(Shared_word* words, std::size_t count, std::string_view text) {
    auto const used = std::min(count, (text.size() + k_word - 1) / k_word);
    for (std::size_t place = 0; place < used; ++place) {
        put(words[place], word_of(text, place, count));
    }
    for (std::size_t place = used; place < count; ++place) {
        put(words[place], 0U);
    }
}

bool is_text(Shared_word const* words, std::size_t count, std::string_view text) {
    for (std::size_t place = 0; place < count; ++place) {
        if (own(words[place]) != word_of(text, place, count)) {
            return false;
        }
    }
    return true;
}

void put(Bits<Shared_word>& place, std::uint8_t const* bytes, std::size_t count) {
    put(place.length, count);
    std::string_view const text(reinterpret_cast<char const*>(bytes), std::min(count, k_bits));
    put(place.bytes, text);
}

void tell(Page& page, Ring<Shared_word>& ring, std::uint64_t at, Event_kind kind, Numbers numbers,
          std::string_view text) {
    auto const number = own(ring.count);
    auto& event = ring.events[number % k_events];
    put(event.at, at);
    put(event.kind, kind);
    put(event.numbers[0], numbers.first);
    put(event.numbers[1], numbers.second);
    put(event.numbers[2], numbers.third);
    put(event.text, text);
    put(ring.count, number + 1);
    page.events.fetch_add(1, std::memory_order_release);
}

void wake(Page& page) {
    auto const events = page.events.load(std::memory_order_relaxed);
    if (events != own(page.driver.told)) {
        put(page.driver.told, events);
        ::syscall(SYS_futex, &page.events, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0);
    }
}

}  // namespace status
