#include "script.h"

#include "draws.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>
#include <stdexcept>

namespace soak {

namespace {

using Words = std::vector<std::string>;

/// A kind of step. The words in capitals are drawn from `classes`, or are a time in milliseconds; `weight` is how often
/// the step is drawn beside the others.
struct Kind {
    Verb verb;
    unsigned weight;
    char const* line;
};

constexpr Kind k_kinds[] = {
    {Verb::key, 40, "key KEY"},
    {Verb::behave, 10, "client CLIENT is MANNER"},
    {Verb::late, 6, "client CLIENT is late SHORT"},
    {Verb::report, 2, "client CLIENT reports out of turn"},
    {Verb::ecu, 6, "application APPLICATION requests ecu_alive"},
    {Verb::com, 6, "application APPLICATION requests com_alive BITS NUMBER"},
    {Verb::wake_up, 4, "application APPLICATION requests cwu NUMBER"},
    {Verb::drop, 14, "application APPLICATION releases MEANS BITS"},
    {Verb::kill, 3, "kill NEIGHBOUR for SHORT"},
    {Verb::stop, 4, "stop PROCESS for SHORT"},
    {Verb::stop, 2, "stop daemon for SHORT"},
    {Verb::freeze, 2, "freeze all for SHORT"},
    {Verb::withdraw, 2, "withdraw the network manager for SHORT"},
    {Verb::need, 5, "others need NETWORK"},
    {Verb::rest, 5, "others need nothing"},
    {Verb::silence, 2, "others are silent for SHORT"},
    {Verb::busy, 2, "the processors are busy for SHORT"},
    {Verb::restart, 1, "restart the daemon by SIGNAL"},
    {Verb::late_start, 2, "start LATE after another daemon by LONG"},
    {Verb::settle, 6, "settle"},
};

std::map<std::string, Words> const& classes() {
    static auto const& all = *new std::map<std::string, Words>{
        {"KEY", {"p", "r", "n", "s", "power"}},
        {"CLIENT", {"diag::dcm", "navigation", "radio", "diag::dem"}},
        {"MANNER", {"well", "well", "well", "silent", "failing", "crashing"}},
        {"APPLICATION", {"1", "2"}},
        {"MEANS", {"ecu_alive", "com_alive", "cwu"}},
        {"BITS", {"02", "04", "82", "0080", "06c0"}},
        {"NUMBER", {"0", "1", "2", "9", "16", "17"}},
        {"NEIGHBOUR", {"application 1", "application 2", "node", "other node", "bus", "log daemon"}},
        {"PROCESS", {"radio", "diag::dcm", "application 1", "node", "service manager", "bus", "log daemon"}},
        {"LATE", {"node", "other node", "application 1", "service manager", "bus", "log daemon"}},
        {"NETWORK", {"20", "40", "000080"}},
        {"SIGNAL", {"TERM", "KILL"}},
    };
    return all;
}

constexpr unsigned k_short_ms = 1'400;  // the longest stall that nothing is to be lost by
constexpr unsigned k_long_ms = 5'000;

// What the draw of single steps meets too seldom: the last hold is given up while the machine is suspended.
constexpr char const* k_given_up_in_suspend[] = {
    "settle",
    "application APPLICATION requests ecu_alive",
    "key p",
    "application 1 releases ecu_alive BITS",
    "application 2 releases ecu_alive BITS",
    "key r",
    "settle",
};
constexpr unsigned k_scene_in_100 = 2;

Words split(std::string const& text) {
    std::istringstream stream(text);
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

bool is_number(std::string const& word) {
    return !word.empty() && word.size() < 7 &&
           std::all_of(word.begin(), word.end(), [](unsigned char character) { return std::isdigit(character) != 0; });
}

/// How many of the words from `from` on the word of a line stands for; 0 when it does not fit.
std::size_t fits(std::string const& pattern, Words const& words, std::size_t from) {
    if (from >= words.size()) {
        return 0;
    }
    if (pattern == "SHORT" || pattern == "LONG") {
        return is_number(words[from]) ? 1 : 0;
    }
    auto const found = classes().find(pattern);
    if (found == classes().end()) {
        return pattern == words[from] ? 1 : 0;
    }
    for (auto const& value : found->second) {
        auto const parts = split(value);
        if (from + parts.size() <= words.size() &&
            std::equal(parts.begin(), parts.end(), words.begin() + static_cast<std::ptrdiff_t>(from))) {
            return parts.size();
        }
    }
    return 0;
}

bool fits(Kind const& kind, Words const& words) {
    std::size_t place = 0;
    for (auto const& pattern : split(kind.line)) {
        auto const count = fits(pattern, words, place);
        if (count == 0) {
            return false;
        }
        place += count;
    }
    return place == words.size();
}

Step step_of(Words const& words) {
    for (auto const& kind : k_kinds) {
        if (words.size() > 1 && is_number(words.front()) && fits(kind, {words.begin() + 1, words.end()})) {
            return {static_cast<unsigned>(std::stoul(words.front())), kind.verb, {words.begin() + 1, words.end()}};
        }
    }
    throw std::invalid_argument("no step");
}

/// Draws the steps of one life. The keys are mostly those that lead on, since a key that no state takes holds up all
/// that follow it.
class Drawing {
 public:
    explicit Drawing(std::uint64_t seed) : draws_(seed), is_long_(draws_.in_100(10)) {
        for (auto const& kind : k_kinds) {
            bool const is_always_there = kind.verb == Verb::key || kind.verb == Verb::settle;
            bool const ends_daemon = kind.verb == Verb::restart || kind.verb == Verb::late_start;
            bool const is_there = draws_.in_100(60) && !(is_long_ && ends_daemon);
            weights_.push_back(is_always_there || is_there ? kind.weight : 0);
        }
    }

    Script script() {
        Script script{settings(), {}};
        auto const count = is_long_ ? draws_.between(150, 400) : draws_.between(20, 80);
        for (unsigned step = 0; step < count; ++step) {
            script.steps.push_back(this->step());
            if (draws_.in_100(k_scene_in_100)) {
                add_scene(script);
            }
        }
        return script;
    }

 private:
    std::vector<Setting> settings() {
        return {{"StateManagerNMUsage", draws_.in_100(85) ? "true" : "false"},
                {"StateManagerMainPeriod", draws_.one_of<std::string>({"10", "20", "50", "100"})},
                {"ApplicationSuspendRequestTimeout", std::to_string(draws_.between(1, 2))},
                {"DMSuspendRequestTimeout", std::to_string(draws_.between(1, 2))},
                {"KnockOutTimer", draws_.one_of<std::string>({"0", "3", "30", "100"})}};
    }

    Step step() {
        auto const& kind = k_kinds[place()];
        return {pause(), kind.verb, drawn(kind.line)};
    }

    void add_scene(Script& script) {
        for (auto const* line : k_given_up_in_suspend) {
            auto words = drawn(line);
            words.insert(words.begin(), std::to_string(pause()));
            script.steps.push_back(step_of(words));
        }
        last_key_ = "r";
    }

    Words drawn(char const* line) {
        Words words;
        for (auto const& pattern : split(line)) {
            auto const drawn = split(word(pattern));
            words.insert(words.end(), drawn.begin(), drawn.end());
        }
        return words;
    }

    std::size_t place() {
        unsigned all = 0;
        for (auto const weight : weights_) {
            all += weight;
        }
        auto drawn = draws_.below(all);
        std::size_t place = 0;
        for (; drawn >= weights_[place]; ++place) {
            drawn -= weights_[place];
        }
        return place;
    }

    unsigned pause() {
        switch (draws_.below(4)) {
            case 0:
                return 0;
            case 1:
                return draws_.between(1, 30);
            case 2:
                return draws_.between(30, 300);
            default:
                return draws_.between(300, 1'000);
        }
    }

    std::string word(std::string const& pattern) {
        if (pattern == "KEY") {
            return key();
        }
        if (pattern == "SHORT") {
            return std::to_string(draws_.between(1, k_short_ms));
        }
        if (pattern == "LONG") {
            return std::to_string(draws_.between(1, k_long_ms));
        }
        auto const found = classes().find(pattern);
        return found == classes().end() ? pattern : draws_.one_of(found->second);
    }

    std::string key() {
        static std::map<std::string, Words> const next{
            {"p", {"r", "r", "r", "r", "r", "r", "r", "r", "r", "r", "r", "r", "r", "power", "p", "n"}},
            {"r", {"p", "p", "p", "p", "p", "p", "p", "p", "p", "p", "n", "n", "s", "s", "power", "r"}},
            {"n", {"r", "r", "r", "r", "r", "p", "p", "power", "s"}},
            {"s", {"r", "r", "r", "p", "p", "n"}},
            {"power", {"p", "p", "p", "n", "s"}},
        };
        do {
            last_key_ = draws_.one_of(next.at(last_key_));
        } while (is_long_ && last_key_ != "p" && last_key_ != "r");  // the others lead to Shutting down
        return last_key_;
    }

    Draws draws_;
    bool const is_long_;  ///< and of few daemons
    std::vector<unsigned> weights_;
    std::string last_key_{"power"};
};

}  // namespace

Script drawn(std::uint64_t seed) {
    return Drawing(seed).script();
}

unsigned number_at_end(Step const& step) {
    return static_cast<unsigned>(std::stoul(step.words.back()));
}

std::string joined(Words const& words) {
    std::string text;
    for (auto const& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

std::string text_of(Step const& step) {
    auto number = std::to_string(step.after_ms);
    number.insert(0, number.size() < 5 ? 5 - number.size() : 0, ' ');
    return number + "  " + joined(step.words);
}

std::string text_of(Script const& script) {
    std::string text;
    for (auto const& setting : script.settings) {
        text += "set " + setting.name + ' ' + setting.value + '\n';
    }
    for (auto const& step : script.steps) {
        text += text_of(step) + '\n';
    }
    return text;
}

Script parsed(std::string const& text) {
    Script script;
    std::istringstream lines(text);
    unsigned number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        auto const words = split(line);
        if (words.empty() || words.front().front() == '#') {
            continue;
        }
        try {
            if (words.front() == "set" && words.size() == 3) {
                script.settings.push_back({words[1], words[2]});
            } else {
                script.steps.push_back(step_of(words));
            }
        } catch (std::invalid_argument const&) {
            throw std::invalid_argument("line " + std::to_string(number) + " is no step: " + line);
        }
    }
    return script;
}

}  // namespace soak
