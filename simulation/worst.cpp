#include "simulation/worst.h"

#include "simulation/play.h"
#include "simulation/report.h"

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
constexpr unsigned k_longest_answers = 6;  // every group in three sequences
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

/// Looks for the longest way among lives in which only keys are pressed.
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
        script_.events.clear();
        script_.expectations.clear();
        if (script_.clients.empty()) {
            for (auto const* const name : {"diag::dcm", "application", "diag::dem"}) {
                script_.clients.push_back({name, {Answer::silent}, "kOn"});
            }
        }
    }

    /// The longest way from a key at any of the base's moments; the base's own later keys are left out.
    void try_all(Presses const& base, Goal const& goal) {
        for (unsigned silent = 0; silent < k_manners; ++silent) {
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

    /// A suspend, and a resume once that has come to its end, of clients that are silent.
    Presses suspend_and_resume() {
        Presses presses{{k_first_key, "p"}};
        for (auto const& entry : play_with(presses, k_manners - 1)) {
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
        for (auto const& press : presses) {
            script.events.push_back({press.at, [key = press.key](Life& life) { life.hypervisor().press(key); }});
        }
        auto const last = presses.empty() ? k_first_key : presses.back().at;
        script.until = last + k_longest_answers * longest_answer_ + k_slack;
        return script;
    }

    Timeline play_with(Presses const& presses, unsigned silent) const {
        return play(life(presses, silent), configuration_).timeline;
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
                keep(presses, silent, {from, entry + 1});
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
        for (auto const& press : presses) {
            text += "\nat " + time_text(press.at) + " key " + press.key;
        }
        return text + "\nuntil " + time_text(played.end()) + '\n';
    }

    Script script_;
    std::string const& configuration_;
    Time longest_answer_{0};
    Presses presses_;
    Worst worst_;
};

}  // namespace

std::vector<Goal> const& goals() {
    static auto const& all =
        *new std::vector<Goal>{{"suspend", "p", "PreparedSD"}, {"resume", "r", "Running"}, {"shutdown", "power", ""}};
    return all;
}

Worst find_worst(Script const& script, std::string const& configuration, Goal const& goal) {
    auto const& resume = goals().at(1);
    Search resumes(script, configuration);
    auto const base = resumes.suspend_and_resume();
    resumes.try_all(base, resume);
    if (goal.name == resume.name) {
        return resumes.take();
    }
    Search search(script, configuration);
    search.try_all(base, goal);
    search.try_all(resumes.presses(), goal);
    return search.take();
}

std::string text_of(Worst const& worst, Goal const& goal) {
    if (worst.legs.empty()) {
        return std::string("No ") + goal.name + " was found.\n";
    }
    std::string text = std::string("The longest ") + goal.name + " takes " + seconds(worst.length) + ", from key " +
                       goal.key + " to " + (*goal.state == '\0' ? "the end" : goal.state) + ":\n";
    for (auto const& leg : worst.legs) {
        text += padded(seconds(leg.length), 12) + "  " + leg.what + '\n';
    }
    text += "\nThe script that plays it:\n" + worst.script;
    if (worst.lost != 0) {
        text += "\nIn " + std::to_string(worst.lost) + " of the " + std::to_string(worst.tried) +
                " lives that were tried the key was lost: another cause's transition took it. The first of them:\n" +
                worst.lost_script;
    }
    return text;
}

}  // namespace simulation
