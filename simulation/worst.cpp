#include "simulation/worst.h"

#include "simulation/play.h"
#include "simulation/report.h"
#include "simulation/script_clients.h"
#include "simulation/script_line.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

namespace simulation {

namespace {

using Answer = Client_manner::Answer;

constexpr Time k_first_key = std::chrono::seconds(1);
constexpr Time k_rest = std::chrono::seconds(1);  // in the suspend, before the resume
constexpr Time k_slack = std::chrono::seconds(5);
constexpr Time k_patience = std::chrono::seconds(60);  // of the daemon with neighbours that never answer
constexpr unsigned k_most_waits = 20;                  // for a slow neighbour, in one life
constexpr unsigned k_longest_answers = 6;              // every group in three sequences
// What is looked at is at most a day, as in a script.
constexpr Time k_longest_answer = std::chrono::hours(24) / k_longest_answers;
constexpr unsigned k_manners = 8;  // each of three groups as it is, or silent

struct Press {
    Time at;
    char const* key;
};
using Presses = std::vector<Press>;

unsigned group_of(std::string const& name) {
    return name == "diag::dcm" ? 0 : name == "diag::dem" ? 2 : 1;
}

/// "12.5s", as a script has it.
std::string time_text(Time time) {
    auto text = seconds(time);
    text.erase(text.size() - 2, 1);
    return text;
}

std::string manner_text(Client_manner const& manner) {
    switch (manner.answer) {
        case Answer::silent:
            return " silent";
        case Answer::fails:
            return " fails after " + time_text(manner.after);
        case Answer::is_invalid:
            return " invalid after " + time_text(manner.after);
        case Answer::crashes:
            return " crashes after " + time_text(manner.after);
        case Answer::succeeds_twice:
            return " twice after " + time_text(manner.after);
        case Answer::succeeds:
            break;
    }
    return " after " + time_text(manner.after);
}

/// The second word of "client radio silent".
std::string second_word(std::string const& text) {
    auto const begin = text.find_first_not_of(" \t", text.find_first_of(" \t"));
    return text.substr(begin, text.find_first_of(" \t", begin) - begin);
}

bool begins_with(std::string const& text, char const* word) {
    return text.substr(0, text.find_first_of(" \t")) == word;
}

/// Whether an event changes how a neighbour behaves; keys, the network and applications are the search's own matter.
bool is_manner(Script::Event const& event) {
    for (auto const* const word : {"client", "manager", "status-file", "restart-file", "keyboard", "service-manager"}) {
        if (begins_with(event.text, word)) {
            return !(begins_with(event.text, "service-manager") && second_word(event.text) == "stops");
        }
    }
    return false;
}

/// What a neighbour takes from an event on: the times behind "after" and "takes".
Time slowness_of(Script::Event const& event) {
    Script_line line(0, event.text);
    Time longest{0};
    while (!line.at_end()) {
        auto const word = line.next("a word");
        if ((word == "after" || word == "takes") && !line.at_end() && line.peek() != "after") {
            longest = std::max(longest, line.time("a time"));
        }
    }
    return longest;
}

bool is_client_event(Script::Event const& event) {
    return begins_with(event.text, "client");
}

bool has_clients(Script const& script) {
    return !script.clients.empty() || std::any_of(script.events.begin(), script.events.end(), is_client_event);
}

/// Looks for the longest way among lives in which keys are pressed and neighbours change their manner.
class Search {
 public:
    Search(Script script, std::string const& configuration)
        : script_(std::move(script)), configuration_(configuration) {
        auto const settings = nlohmann::json::parse(configuration)["ap_statemanager"];
        for (auto const* const name : {"DMSuspendRequestTimeout", "ApplicationSuspendRequestTimeout"}) {
            auto const setting = settings.find(name);
            bool const is_number = setting != settings.end() && setting->is_number_unsigned();
            longest_answer_ += std::chrono::seconds(is_number ? setting->get<std::uint32_t>() : 0U);
        }
        if (longest_answer_ > k_longest_answer) {
            throw std::runtime_error(
                "ApplicationSuspendRequestTimeout and DMSuspendRequestTimeout together are more than four hours, too "
                "long to search");
        }
        if (!has_clients(script_)) {
            for (auto const* const name : {"diag::dcm", "application", "diag::dem"}) {
                script_.clients.push_back({name, {Answer::silent}, "kOn"});
            }
        }
        auto& events = script_.events;
        events.erase(std::remove_if(events.begin(), events.end(), [](auto const& event) { return !is_manner(event); }),
                     events.end());
        script_.expectations.clear();
        slack_ = k_slack + script_.power_off_takes + (events.empty() ? Time(0) : k_patience);
        for (auto const& event : events) {
            slack_ += is_client_event(event) ? Time(0) : k_most_waits * slowness_of(event);
        }
    }

    /// The longest way from a key at any of the base's moments; the base's own later keys are left out.
    void try_all(Presses const& base, Goal const& goal, unsigned manners) {
        for (unsigned silent = 0; silent < manners; ++silent) {
            std::set<Time> moments;
            bool runs = false;
            for (auto const& entry : play_with(base, silent)) {
                runs = runs || (entry.kind == Kind::state && entry.who == "Running");
                if (runs) {
                    moments.insert({entry.at, entry.at + Time(1)});
                }
            }
            for (auto const moment : moments) {
                try_one(base, moment, silent, goal);
            }
        }
    }

    /// A suspend, and a resume once that has come to its end.
    Presses suspend_and_resume(unsigned silent) {
        Presses presses{{k_first_key, "p"}};
        for (auto const& entry : play_with(presses, silent)) {
            if (entry.kind == Kind::state && entry.who == "PreparedSD") {
                presses.push_back({entry.at + k_rest, "r"});
            }
        }
        return presses;
    }

    Presses const& presses() const { return presses_; }
    Worst take() { return std::move(worst_); }

 private:
    Script life(Presses const& presses, unsigned silent) const {
        Script script = script_;
        for (auto& client : script.clients) {
            if ((silent & (1U << group_of(client.name))) != 0) {
                client.manner = {Answer::silent};
            }
        }
        // One that comes or changes its manner is silent from then on.
        for (auto const& event : script_.events) {
            if (is_client_event(event)) {
                auto const name = client_name(second_word(event.text));
                if ((silent & (1U << group_of(name))) != 0) {
                    script.events.push_back({event.at,
                                             [name](Life& life) { life.clients().behave(name, {Answer::silent}); },
                                             "client " + name + " silent"});
                }
            }
        }
        for (auto const& press : presses) {
            script.events.push_back({press.at, [key = press.key](Life& life) { life.hypervisor().press(key); },
                                     std::string("key ") + press.key});
        }
        auto const last = presses.empty() ? k_first_key : presses.back().at;
        script.until = last + k_longest_answers * longest_answer_ + slack_;
        return script;
    }

    Timeline play_with(Presses const& presses, unsigned silent) const {
        try {
            return play(life(presses, silent), configuration_).timeline;
        } catch (Too_many_cycles const&) {
            throw std::runtime_error(
                "a life of the search has more than 2000000 cycles: it needs shorter time-outs of clients, no "
                "\"keyboard lost\", or a longer StateManagerMainPeriod");
        }
    }

    void try_one(Presses const& base, Time moment, unsigned silent, Goal const& goal) {
        Presses presses;
        for (auto const& press : base) {
            if (press.at <= moment) {
                presses.push_back(press);
            }
        }
        presses.push_back({moment, goal.key});
        auto const timeline = play_with(presses, silent);
        std::string state;
        auto from = timeline.end();
        for (auto entry = timeline.begin(); entry != timeline.end(); ++entry) {
            if (entry->kind == Kind::key && entry->at == moment && entry->what == goal.key) {
                from = entry;
            } else if (from == timeline.end() && entry->kind == Kind::state) {
                state = entry->who;
            } else if (from != timeline.end() && is_reached(*entry, goal)) {
                keep(presses, silent, {from, with_its_word(entry, timeline.end()) + 1});
                return;
            }
        }
        if (from != timeline.end() && state != goal.state) {
            lose(presses, silent);
        }
    }

    static bool is_reached(Entry const& entry, Goal const& goal) {
        bool const is_end = *goal.state == '\0';
        return is_end ? entry.kind == Kind::end && entry.what != k_end_of_the_look
                      : entry.kind == Kind::state && entry.who == goal.state;
    }

    /// The hypervisor knows of a state when its word is written, which a slow file delays.
    static Timeline::const_iterator with_its_word(Timeline::const_iterator reached, Timeline::const_iterator end) {
        auto next = reached;
        while (reached->kind == Kind::state && ++next != end && next->kind != Kind::state) {
            if (next->kind == Kind::word) {
                return next;
            }
        }
        return reached;
    }

    void keep(Presses const& presses, unsigned silent, Timeline const& way) {
        auto const length = way.back().at - way.front().at;
        ++worst_.tried;
        if (length > worst_.length) {
            presses_ = presses;
            worst_.length = length;
            worst_.legs = legs_of(way);
            worst_.script = script_text(presses, silent);
        }
    }

    void lose(Presses const& presses, unsigned silent) {
        ++worst_.tried;
        if (++worst_.lost == 1) {
            worst_.lost_script = script_text(presses, silent);
        }
    }

    /// A leg begins where clients are asked or a state is entered.
    static std::vector<Worst::Leg> legs_of(Timeline const& way) {
        std::vector<Worst::Leg> legs;
        std::vector<Time> begins;
        for (auto const& entry : way) {
            bool const asks = entry.kind == Kind::client && entry.what.rfind("asked", 0) == 0;
            if (!asks && entry.kind != Kind::state && entry.kind != Kind::key) {
                continue;
            }
            auto const what =
                asks ? entry.who + ' ' + entry.what : (entry.kind == Kind::key ? "key " + entry.what : entry.who);
            if (begins.empty() || begins.back() != entry.at) {
                begins.push_back(entry.at);
                legs.push_back({Time(0), what});
            } else {
                legs.back().what += ", " + what;
            }
        }
        begins.push_back(way.back().at);
        for (std::size_t place = 0; place < legs.size(); ++place) {
            legs[place].length = begins[place + 1] - begins[place];
        }
        return legs;
    }

    std::string script_text(Presses const& presses, unsigned silent) const {
        std::string text;
        for (auto const& setting : script_.settings) {
            text += "config " + setting.key + ' ' + setting.value + '\n';
        }
        auto const played = life(presses, silent);
        for (auto const& client : played.clients) {
            text += (&client == &played.clients.front() ? "clients " : ", ") + client.name +
                    manner_text(client.manner) + (client.state == "kOn" ? "" : " in " + client.state);
        }
        text += played.clients.empty() ? "" : "\n";
        text += played.manager_is_there ? "" : "manager absent\n";
        text += played.channel_is_there ? "" : "power-off absent\n";
        if (played.power_off_takes > Time(0)) {
            text += "power-off takes " + time_text(played.power_off_takes) + '\n';
        }
        for (auto const& event : played.events) {
            // One after the end is refused in a script.
            text += event.at > played.end() ? "" : "at " + time_text(event.at) + ' ' + event.text + '\n';
        }
        return text + "until " + time_text(played.end()) + '\n';
    }

    Script script_;
    std::string const& configuration_;
    Time longest_answer_{0};
    Time slack_{0};
    Presses presses_;
    Worst worst_;
};

Worst longest(Script const& script, std::string const& configuration, Goal const& goal, unsigned manners) {
    auto const& resume = goals().at(1);
    Search resumes(script, configuration);
    auto const base = resumes.suspend_and_resume(manners - 1);
    resumes.try_all(base, resume, manners);
    if (goal.name == resume.name) {
        return resumes.take();
    }
    Search search(script, configuration);
    search.try_all(base, goal, manners);
    search.try_all(resumes.presses(), goal, manners);
    return search.take();
}

std::string way_of(Worst const& worst, Goal const& goal, std::string const& whose) {
    if (worst.legs.empty()) {
        return whose + ", no " + goal.name + " was found.\n";
    }
    auto text = whose;
    if (worst.lost != 0) {
        text += ", there is no bound: in " + std::to_string(worst.lost) + " of the " + std::to_string(worst.tried) +
                " lives that were tried the key was lost. Where it is not lost";
    }
    text += std::string(", the longest ") + goal.name + " takes " + seconds(worst.length) + ", from key " + goal.key +
            " to " + (*goal.state == '\0' ? "the end" : goal.state) + ":\n";
    for (auto const& leg : worst.legs) {
        text += padded(seconds(leg.length), 12) + "  " + leg.what + '\n';
    }
    text += "\nThe script that plays it:\n" + worst.script;
    if (worst.lost != 0) {
        text += "\nA key is lost where another cause's transition takes it. The first such life:\n" + worst.lost_script;
    }
    return text;
}

}  // namespace

std::vector<Goal> const& goals() {
    static auto const& all =
        *new std::vector<Goal>{{"suspend", "p", "PreparedSD"}, {"resume", "r", "Running"}, {"shutdown", "power", ""}};
    return all;
}

Longest_way::Longest_way(Script const& script, std::string const& configuration, Goal const& goal)
    : script_(script), goal_(goal) {
    auto const settings = nlohmann::json::parse(configuration)["ap_statemanager"];
    auto const budget = settings.find("PMSuspendRequestTimeout");
    if (budget != settings.end() && budget->is_number_unsigned()) {
        budget_ = std::chrono::seconds(budget->get<std::uint32_t>());
    }
    whatever_they_do_ = longest(script, configuration, goal, k_manners);
    if (has_clients(script)) {
        as_they_are_ = longest(script, configuration, goal, 1);
        if (as_they_are_->length > whatever_they_do_.length) {
            whatever_they_do_ = *as_they_are_;
        }
    }
}

std::string Longest_way::assumed() const {
    std::string text;
    std::size_t left_out = 0;
    for (auto const& event : script_.events) {
        if (is_manner(event)) {
            text += "    at " + time_text(event.at) + ' ' + event.text + '\n';
        } else {
            ++left_out;
        }
    }
    text =
        "Assumed: only keys r, p and power are pressed, no application calls, the network reports nothing, and the "
        "other neighbours answer at once" +
        (text.empty() ? ".\n" : ", but for\n" + text);
    if (left_out != 0) {
        text += "Not played: " + std::to_string(left_out) + " of the script's events.\n";
    }
    return text;
}

std::string Longest_way::text() const {
    std::string text;
    if (as_they_are_) {
        text = way_of(*as_they_are_, goal_, "With the clients as they are") + '\n';
    }
    text += way_of(whatever_they_do_, goal_, "Whatever the clients do") + '\n' + assumed();
    if (*goal_.state == '\0') {
        text += "A fast shutdown, from PreparedSD, gives the power-off service " + seconds(budget_) +
                " (PMSuspendRequestTimeout); what it takes is the script's \"power-off takes\".\n";
    }
    return text;
}

}  // namespace simulation
