#ifndef TOOLS_PAGE_PAGE_VIEW_H
#define TOOLS_PAGE_PAGE_VIEW_H

#include "status/layout.h"

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace statectl {

using Number = std::uint64_t;

/// What the page said at one moment. What a writer that was ended half-way has left behind is told as it is.
struct Snapshot {
    status::Life<Number> life{};
    status::Driver<Number> driver{};
    status::Server<Number> server{};
    std::vector<status::Client<Number>> clients;  ///< those that are connected
    std::vector<status::Name<Number>> names;
    status::Services<Number> services{};
    std::vector<status::Instance<Number>> instances;
    status::Network<Number> network{};
    std::vector<status::Event<Number>> events;  ///< the newest, in the order of their times
    status::Counters<Number> counters{};
    bool is_half_written{false};  ///< something has an odd sequence, and kept it
    bool is_alive{false};         ///< its daemon runs: the lock is held, the process is there, the loop has not ended
    bool is_foreign{false};       ///< another boot's or machine's, whose times are no times of this one
    Number now{0};     ///< CLOCK_MONOTONIC when the copy was begun; of a dead page when it said something last
    Number silent{0};  ///< nanoseconds that a dead page has said nothing
};

/// The text, without the zeros behind it.
template <std::size_t bytes>
std::string text_of(status::Text<Number, bytes> const& text) {
    std::string result;
    for (auto const word : text.words) {
        for (std::size_t i = 0; i < sizeof word; ++i) {
            result.push_back(static_cast<char>(word >> 8 * i));
        }
    }
    return result.substr(0, result.find('\0'));
}

std::vector<std::uint8_t> bytes_of(status::Bits<Number> const& bits);

/// A copy of the page. Looks again at what is being written, after a short pause; no more than `retries` times
/// altogether.
Snapshot snapshot_of(status::Page const& page, unsigned retries);

/// No page can be read; the text says why.
class No_page : public std::runtime_error {
 public:
    enum class Kind { missing, forbidden, not_a_page, other_version };

    No_page(Kind what, std::string const& text) : std::runtime_error(text), kind(what) {}

    Kind const kind;
};

/// The page of a file, for reading. It takes nothing from the daemon, and the daemon does not know of it.
class Page_view {
 public:
    /// Throws No_page.
    explicit Page_view(std::string const& path);
    ~Page_view();
    Page_view(Page_view const&) = delete;
    Page_view& operator=(Page_view const&) = delete;

    Snapshot snapshot() const;

    /// Counts the events.
    Number events() const { return page_->events.load(std::memory_order_acquire); }

    /// Waits until there are other events than `seen`, or the time is over.
    void await_events(Number seen, std::chrono::nanoseconds time) const;

    /// The file at the path is another one by now: a daemon has been started.
    bool is_outdated() const;

 private:
    std::string path_;
    Number file_{0};
    status::Page const* page_{nullptr};
};

}  // namespace statectl

#endif
