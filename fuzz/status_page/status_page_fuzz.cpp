// A status page with any words: whoever reads it gets no more records than there is room for, and sentences without
// bytes that a terminal would obey. The input is pairs of a word's number, four bytes, and what is put there, eight
// bytes.
#include "require.h"
#include "status/driver_status.h"
#include "status/page_writer.h"
#include "status/server_status.h"
#include "status/services_status.h"
#include "tools/page/page_view.h"
#include "tools/page/reasons.h"

#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using fuzz::require;
using namespace statectl;

constexpr std::size_t k_words = sizeof(status::Page) / sizeof(status::Shared_word);

/// A page on which something of everything stands.
std::vector<std::uint64_t> busy_words() {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    status::provided(status::Hold::com_alive, {"1", "2"});
    status::com_requested("1", {1, 2, 3}, 4);
    status::client_connected(7, "radio", "kOn");
    status::request_began("kPrepSD", std::chrono::steady_clock::now());
    status::client_asked(7);
    status::key_taken(1);
    status::transition(1, 5, 4);
    status::set_page(nullptr);
    std::vector<std::uint64_t> words(k_words);
    for (std::size_t i = 0; i < k_words; ++i) {
        words[i] = reinterpret_cast<status::Shared_word const*>(page.get())[i].load();
    }
    return words;
}

status::Page& busy_page(std::vector<std::uint64_t> const& words) {
    auto& page = *new status::Page{};
    for (std::size_t i = 0; i < k_words; ++i) {
        reinterpret_cast<status::Shared_word*>(&page)[i].store(words[i]);
    }
    return page;
}

void require_plain(std::vector<Reason> const& reasons) {
    for (auto const& reason : reasons) {
        require(!reason.code.empty());
        for (char const character : reason.text) {
            require(static_cast<unsigned char>(character) >= ' ');
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static auto const& busy = *new std::vector<std::uint64_t>(busy_words());
    static auto& page = busy_page(busy);
    auto* const words = reinterpret_cast<status::Shared_word*>(&page);
    std::vector<std::size_t> changed;
    for (; size >= 12; data += 12, size -= 12) {
        std::uint32_t place = 0;
        std::uint64_t value = 0;
        std::memcpy(&place, data, sizeof place);
        std::memcpy(&value, data + sizeof place, sizeof value);
        changed.push_back(place % k_words);
        words[changed.back()].store(value, std::memory_order_relaxed);
    }
    auto const copy = snapshot_of(page, 1);
    require(copy.clients.size() <= status::k_clients && copy.names.size() <= status::k_names);
    require(copy.instances.size() <= status::k_instances && copy.events.size() <= 4 * status::k_events);
    require_plain(reasons_of(copy));
    require_plain(troubles_of(copy));
    for (auto const place : changed) {
        words[place].store(busy[place], std::memory_order_relaxed);
    }
    return 0;
}
