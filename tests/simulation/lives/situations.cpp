// Which situations there can be is walked, not listed: from the start each cycle does what the tables of the states and
// the table of the notifier say, whatever came before it from outside.
#include "situations.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace lives {

using bench::rules::Command;
using bench::rules::Intention;
using bench::rules::Row;
using bench::rules::State;
using exploration::Notifier_model;

namespace {

/// What stays the same in a life.
struct Configured {
    bool nm_is_used;
    bool has_no_patience;  ///< Post Run lasts no cycle longer for whoever keeps the ECU alive
};

/// What came from outside.
struct Outside {
    bool nm_is_found;
    bool network_sleeps;
    bool ecu_is_kept;
    bool com_is_kept;
    bool time_is_over;
};

using Queue = std::vector<Command>;

/// What a machine carries from one cycle to the next.
struct Point {
    State state{State::starting_up};
    Queue queue{};
    Command last{Command::none};
    bool is_to_prepare{false};
    bool has_stayed{false};  ///< a cycle in this state
    Notifier_model notifier{};
    Row const* entered_by{nullptr};

    auto key() const {
        auto const copied = [](auto const&... parts) { return std::make_tuple(parts...); };
        return std::make_tuple(state, queue, last, is_to_prepare, has_stayed, entered_by,
                               std::apply(copied, notifier.key()));
    }
};

class Found : public bench::rules::Situation {
 public:
    Found(Configured configured, Outside outside, Point& point)
        : configured_(configured), outside_(outside), point_(point) {}

    Command command() const override { return point_.queue.empty() ? Command::none : point_.queue.front(); }
    bool nm_is_used() const override { return configured_.nm_is_used; }
    bool nm_is_found() const override { return outside_.nm_is_found; }
    bool network_sleeps() const override { return outside_.network_sleeps; }
    bool ecu_is_kept() const override { return outside_.ecu_is_kept; }
    bool com_is_kept() const override { return outside_.com_is_kept; }
    bool is_to_prepare() const override { return point_.is_to_prepare; }
    bool time_is_over() const override { return outside_.time_is_over; }
    bool clients_are_asked() const override {
        point_.notifier.check();
        return point_.notifier.is_running();
    }

 private:
    Configured configured_;
    Outside outside_;
    Point& point_;
};

// Applications and the network are heard of when the manager is found, and it is found when the start is over.
std::vector<Outside> outsides(Configured configured, Point const& point) {
    std::vector<Outside> all;
    for (unsigned bits = 0; bits < 32; ++bits) {
        Outside const one{(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0, (bits & 8U) != 0, (bits & 16U) != 0};
        bool const is_heard = one.network_sleeps || one.ecu_is_kept || one.com_is_kept;
        bool const must_be_found = configured.nm_is_used && point.state != State::starting_up;
        bool const can_be_over = configured.has_no_patience || (point.state == State::post_run && point.has_stayed);
        if ((one.nm_is_found ? configured.nm_is_used : !must_be_found && !is_heard) &&
            (one.time_is_over ? can_be_over : !configured.has_no_patience)) {
            all.push_back(one);
        }
    }
    return all;
}

// More than three that wait add nothing: what is behind them is free.
void read(Point& point, Command command) {
    constexpr std::size_t k_most = 3;
    if (command == Command::shutdown) {
        point.queue.clear();
    }
    if (command != point.last && point.queue.size() < k_most) {
        point.queue.push_back(command);
        point.last = command;
    }
}

void enter(Point& point, State state) {
    point.state = state;
    point.has_stayed = false;
    if (!point.queue.empty()) {
        point.queue.erase(point.queue.begin());
    }
    if (state == State::preparing) {
        point.notifier.request_standby();
    } else if (state == State::resuming) {
        point.notifier.request_resume();
    }
}

class Walk {
 public:
    explicit Walk(Configured configured) : configured_(configured) { reach({}); }

    void run(Possible& all) {
        while (!open_.empty()) {
            auto const point = open_.back();
            open_.pop_back();
            before_cycle(point, all);
        }
    }

 private:
    void reach(Point const& point) {
        if (seen_.insert(point.key()).second) {
            open_.push_back(point);
        }
    }

    void before_cycle(Point const& point, Possible& all) {
        for (bool const answers : {false, true}) {
            if (answers && !point.notifier.asked()) {
                continue;
            }
            for (unsigned key = 0; key <= static_cast<unsigned>(Command::shutdown); ++key) {
                auto next = point;
                if (answers) {
                    next.notifier.answered();
                }
                if (key != 0) {
                    read(next, static_cast<Command>(key));
                }
                for (auto const& outside : outsides(configured_, point)) {
                    cycle(next, outside, all);
                }
            }
        }
    }

    void cycle(Point next, Outside outside, Possible& all) {
        Found const found(configured_, outside, next);
        all.situations.emplace(next.state, number_of(found, next.notifier));
        auto const& row = bench::rules::deciding_row(next.state, found);
        if (row.intention != Intention::stays) {
            next.is_to_prepare = row.intention == Intention::begins;
        }
        if (row.to == State::stay) {
            next.has_stayed = true;
        } else {
            if (next.entered_by != nullptr) {
                all.pairs.emplace(next.entered_by, &row);
            }
            next.entered_by = &row;
            enter(next, row.to);
        }
        // A driver that shuts down normally has no further cycle.
        if (row.to != State::shutting_down || row.from == State::prepared_sd) {
            reach(next);
        }
    }

    Configured configured_;
    std::set<decltype(std::declval<Point const&>().key())> seen_;
    std::vector<Point> open_;
};

}  // namespace

std::uint64_t number_of(bench::rules::Situation const& found, Notifier_model const& notifier) {
    auto const asked = notifier.asked();
    auto number = static_cast<std::uint64_t>(found.command());
    for (bool const bit : {found.nm_is_used(), found.nm_is_found(), found.network_sleeps(), found.ecu_is_kept(),
                           found.com_is_kept(), found.is_to_prepare(), found.time_is_over(), notifier.is_running()}) {
        number = number << 1U | (bit ? 1U : 0U);
    }
    number = number << 2U | (asked ? *asked : 3U);
    return number << 2U | (asked ? static_cast<unsigned>(notifier.requested_from(*asked)) : 0U);
}

std::string text_of(Situation const& situation) {
    constexpr std::array<char const*, 6> k_commands{"no command", "Run",     "NmControlled", "NMControlledPrepareSD",
                                                    "PrepareSD",  "Shutdown"};
    constexpr std::array<char const*, 8> k_bits{"clients asked", "time over",      "to prepare", "COM kept",
                                                "ECU kept",      "network asleep", "found",      "network management"};
    constexpr std::array<char const*, 4> k_groups{", DCM asked ", ", applications asked ", ", DEM asked ", ""};
    constexpr std::array<char const*, 4> k_modes{"", "kOn", "kPrepSD", ""};
    auto const number = situation.second;
    auto text = std::string(bench::rules::name(situation.first)) + ": " + k_commands.at(number >> 12U & 7U);
    for (unsigned bit = k_bits.size(); bit > 0; --bit) {
        text += (number >> (bit + 3U) & 1U) != 0 ? std::string(", ") + k_bits.at(bit - 1) : "";
    }
    return text + k_groups.at(number >> 2U & 3U) + k_modes.at(number & 3U);
}

Possible const& possible() {
    static auto const all = [] {
        Possible found;
        for (bool const nm_is_used : {false, true}) {
            for (bool const has_no_patience : {false, true}) {
                Walk({nm_is_used, has_no_patience}).run(found);
            }
        }
        return found;
    }();
    return all;
}

}  // namespace lives
