// `wait` opens the page, again and again while there is no daemon, and looks at it whenever it shows news. A state may
// be there already; an event has to come after the call. Its time may be over before.

#include "tools/commands.h"
#include "tools/json_text.h"
#include "tools/page/words.h"
#include "tools/page_commands.h"
#include "tools/seconds_option.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace statectl {

namespace {

using Clock = std::chrono::steady_clock;
using status::Event_kind;

constexpr std::size_t k_states = 8;
constexpr auto k_longest_look = std::chrono::seconds(1);
constexpr auto k_look_for_page = std::chrono::milliseconds(100);

struct Wait_options {
    Page_options page;
    std::string state;
    std::string event;
    double seconds{0};
};

// "NM Controlled", "nm-controlled" and "nmcontrolled" are one state.
std::string plain(std::string const& word) {
    std::string letters;
    for (char const character : word) {
        if (std::isalnum(static_cast<unsigned char>(character)) != 0) {
            letters += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        }
    }
    return letters;
}

std::optional<Number> state_named(std::string const& word) {
    for (Number state = 0; state < k_states; ++state) {
        if (plain(state_word(state)) == plain(word)) {
            return state;
        }
    }
    return std::nullopt;
}

Number nanoseconds(Clock::time_point time) {
    return static_cast<Number>(std::chrono::nanoseconds(time.time_since_epoch()).count());
}

/// What is waited for, from a moment on.
class Wish {
 public:
    Wish(Wait_options const& options, Number begin)
        : state_(state_named(options.state)), event_(options.event), begin_(begin) {}

    /// What of it the page shows.
    std::optional<nlohmann::json> seen_in(Snapshot const& page) const {
        if (state_ && page.is_alive && page.driver.state == *state_) {
            return {{{"state", state_word(*state_)}}};
        }
        for (auto const& event : page.events) {
            if (event.at >= begin_ && is_wish(event)) {
                return state_ ? nlohmann::json{{"state", state_word(*state_)}} : event_json(page, event);
            }
        }
        return std::nullopt;
    }

 private:
    bool is_wish(status::Event<Number> const& event) const {
        if (state_) {
            return event.kind == static_cast<Number>(Event_kind::transition) && event.numbers[1] == *state_;
        }
        return event_word(event.kind) == event_;
    }

    nlohmann::json event_json(Snapshot const& page, status::Event<Number> const& event) const {
        return {{"event", event_}, {"text", event_text(page, event)}, {"numbers", event.numbers}};
    }

    std::optional<Number> const state_;
    std::string const event_;
    Number const begin_;
};

void print(Wait_options const& options, nlohmann::json const& seen) {
    if (options.page.as_json) {
        std::puts(json_text(seen).c_str());
    } else if (seen.contains("state")) {
        std::puts(seen.at("state").get<std::string>().c_str());
    } else {
        std::puts((seen.at("event").get<std::string>() + " " + shown(seen.at("text").get<std::string>())).c_str());
    }
}

/// The page of the daemon that runs; none while there is no daemon. Throws No_page for a page that is of no use.
std::unique_ptr<Page_view> opened(std::string const& path) {
    try {
        return std::make_unique<Page_view>(path);
    } catch (No_page const& error) {
        if (error.kind != No_page::Kind::missing) {
            throw;
        }
        return nullptr;
    }
}

int wait(Wait_options const& options) {
    auto const begin = Clock::now();
    auto const limit = std::chrono::duration<double>(options.seconds);
    Wish const wish(options, nanoseconds(begin));
    std::unique_ptr<Page_view> view;
    for (;;) {
        if (!view || view->is_outdated()) {
            view = opened(options.page.path);
        }
        auto const seen = view ? view->events() : 0;
        auto const page = view ? view->snapshot() : Snapshot{};
        if (auto const found = wish.seen_in(page)) {
            print(options, *found);
            return k_success;
        }
        auto const left = limit - (Clock::now() - begin);
        if (options.seconds > 0 && left.count() <= 0) {
            std::fputs("ap_statectl: not seen in time\n", stderr);
            return k_failure;
        }
        auto pause =
            page.is_alive ? std::chrono::nanoseconds(k_longest_look) : std::chrono::nanoseconds(k_look_for_page);
        if (options.seconds > 0) {
            pause = std::min(pause, std::chrono::ceil<std::chrono::nanoseconds>(left));
        }
        if (page.is_alive) {
            view->await_events(seen, pause);
        } else {
            std::this_thread::sleep_for(pause);
        }
    }
}

// As one word each, for a shell.
std::vector<std::string> states() {
    std::vector<std::string> words;
    for (Number state = 0; state < k_states; ++state) {
        words.push_back(state_word(state));
        std::replace(words.back().begin(), words.back().end(), ' ', '-');
    }
    return words;
}

}  // namespace

void add_wait_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Wait_options>();
    auto* const command = program.add_subcommand("wait", "Wait until the machine has a state, or something happens");
    auto* const state = command->add_option("STATE", options->state, "The state, as status tells it")
                            ->check(CLI::IsMember(states(), plain));
    auto* const event = command->add_option("--event", options->event, "What is to happen")
                            ->check(CLI::IsMember(event_words()))
                            ->excludes(state);
    state->excludes(event);
    command->add_option("--for", options->seconds, "Seconds to wait at most; without limit unless told")
        ->check(seconds_from(0.001));
    command->add_option("--page", options->page.path, "The status page's file")->capture_default_str();
    command->add_flag("--json", options->page.as_json, "Print what was seen as JSON");
    command->callback([command, options, &chosen] {
        if (options->state.empty() && options->event.empty()) {
            throw CLI::RequiredError(command->get_name() + ": STATE or --event");
        }
        chosen = [options] { return wait(*options); };
    });
}

}  // namespace statectl
