#include "words.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace soak {

using bench::rules::Command;
using bench::rules::State;
using bench::vehicle::Event;
using bench::vehicle::Kind;

namespace {

constexpr char const* k_words[] = {"startingup",   "running",   "runnmcontrolled", "postrun",
                                   "shuttingdown", "preparing", "prepared4sd",     "resuming"};

}  // namespace

std::string word_of(State state) {
    return k_words[static_cast<unsigned>(state)];
}

std::optional<State> state_of_word(std::string const& word) {
    auto const* const found = std::find(std::begin(k_words), std::end(k_words), word);
    return found == std::end(k_words) ? std::nullopt : std::optional(static_cast<State>(found - std::begin(k_words)));
}

std::optional<State> state_named(std::string const& name) {
    for (unsigned state = 0; state < static_cast<unsigned>(State::stay); ++state) {
        if (name == bench::rules::name(static_cast<State>(state))) {
            return static_cast<State>(state);
        }
    }
    return std::nullopt;
}

Command command_named(std::string const& name) {
    static std::map<std::string, Command> const all{{"Run", Command::run},
                                                    {"NmControlled", Command::nm_controlled},
                                                    {"NMControlledPrepareSD", Command::nm_controlled_prepare_sd},
                                                    {"PrepareSD", Command::prepare_sd},
                                                    {"Shutdown", Command::shutdown}};
    auto const found = all.find(name);
    return found == all.end() ? Command::none : found->second;
}

std::optional<std::string> behind(std::string const& begin, std::string const& text) {
    return text.rfind(begin, 0) == 0 ? std::optional(text.substr(begin.size())) : std::nullopt;
}

std::string word_at(std::string const& text, std::size_t place) {
    auto const begin = text.find_first_not_of(" ,", place);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_first_of(" ,", begin) - begin);
}

bool is_of_daemon(Event const& event) {
    return event.kind == Kind::log && event.application == "STMG";
}

std::string in_ms(std::int64_t time) {
    return std::to_string(time / k_ns_per_ms) + " ms";
}

}  // namespace soak
