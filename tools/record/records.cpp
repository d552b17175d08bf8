// By the recorder at its start, for the newest files, and by the subcommands that tell of the past, for all of them:
// read_records hands each line to add_line, and the lives to finish.

#include "tools/record/records.h"

#include "tools/page/words.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

namespace statectl::record {

namespace {

using nlohmann::json;

constexpr std::size_t k_longest_line = 16'384;
constexpr char const* k_prefix = "record.";
constexpr char const* k_suffix = ".jsonl";

Number number_in(json const& object, char const* name) {
    auto const found = object.find(name);
    return found != object.end() && found->is_number_unsigned() ? found->get<Number>() : 0;
}

Number asleep_in(Recorded_life const& life, json const& object) {
    return life.asleep ? number_in(object, "asleep") : 0;
}

// Without sleeps, the clock goes as the monotonic one does.
Number real_in(Recorded_life const& life, json const& object) {
    auto const real = number_in(object, "real");
    return real - std::min(real, asleep_in(life, object));
}

// Names are bytes of somebody's choice, and are shown in terminals.
std::string text_in(json const& object, char const* name) {
    auto const found = object.find(name);
    return found != object.end() && found->is_string() ? shown(found->get<std::string>()) : "";
}

std::optional<Number> kind_named(std::string const& word) {
    static auto const& words = *new std::vector<std::string>(event_words());
    auto const found = std::find(words.begin(), words.end(), word);
    return found == words.end() ? std::nullopt : std::optional<Number>(found - words.begin() + 1);
}

std::string known_ending(std::string const& word) {
    for (auto const* const known : {ending::normal, ending::fast, ending::signal, ending::watchdog, ending::killed}) {
        if (word == known) {
            return word;
        }
    }
    return ending::no_farewell;
}

std::vector<Recorded_hold> holds_in(json const& object) {
    std::vector<Recorded_hold> holds;
    auto const found = object.find("held");
    if (found != object.end() && found->is_array()) {
        for (auto const& hold : *found) {
            if (hold.is_object()) {
                holds.push_back({number_in(hold, "hold"), text_in(hold, "name")});
            }
        }
    }
    return holds;
}

Counts counts_in(json const& object, char const* name) {
    Counts counts{};
    auto const found = object.find(name);
    for (std::size_t i = 0; found != object.end() && found->is_array() && i < std::min(found->size(), counts.size());
         ++i) {
        counts[i] = (*found)[i].is_number_unsigned() ? (*found)[i].get<Number>() : 0;
    }
    return counts;
}

void add_counts(Recorded_life& life, json const& object) {
    Recorded_count counted{number_in(object, "at"), real_in(life, object), counts_in(object, "counts")};
    for (std::size_t i = 0; i < counted.more.size(); ++i) {
        auto const count = std::max(life.counts[i], counted.more[i]);
        counted.more[i] = count - std::exchange(life.counts[i], count);
    }
    life.counted.push_back(counted);
}

// A file that goes on with a life begins with it anew; so does one who was away for a while.
void add_life(Records& records, json const& object) {
    Recorded_life life;
    life.identity = {text_in(object, "boot"), number_in(object, "life"), number_in(object, "pid"),
                     number_in(object, "started")};
    auto const known = std::find_if(records.lives.begin(), records.lives.end(),
                                    [&](Recorded_life const& other) { return other.identity == life.identity; });
    if (known != records.lives.end()) {
        known->is_left = false;
        std::rotate(known, known + 1, records.lives.end());
        return;
    }
    life.started_real = number_in(object, "started_real");
    life.program = text_in(object, "program");
    life.from = number_in(object, "from");
    life.state = number_in(object, "state");
    life.held = holds_in(object);
    life.counts = counts_in(object, "counted");
    if (object.contains("asleep")) {
        life.asleep = number_in(object, "asleep");
    }
    life.last_at = life.from;
    life.last_real = life.started_real - std::min(life.started_real, asleep_in(life, object)) +
                     (std::max(life.from, life.identity.started) - life.identity.started);
    records.lives.push_back(std::move(life));
}

void add_event(Recorded_life& life, json const& object) {
    Recorded_event event;
    event.kind = kind_named(text_in(object, "event")).value_or(0);
    event.at = number_in(object, "at");
    event.real = real_in(life, object);
    event.asleep = asleep_in(life, object);
    event.text = text_in(object, "text");
    auto const numbers = object.find("numbers");
    if (numbers != object.end() && numbers->is_array()) {
        for (std::size_t i = 0; i < std::min(numbers->size(), event.numbers.size()); ++i) {
            event.numbers[i] = (*numbers)[i].is_number_unsigned() ? (*numbers)[i].get<Number>() : 0;
        }
    }
    life.events.push_back(std::move(event));
}

void add_setting(Recorded_life& life, json const& object) {
    auto const by = object.find("set_by");
    if (by != object.end() && by->is_number_integer()) {
        life.settings.push_back({number_in(object, "at"), by->get<std::int64_t>()});
    }
}

bool is_added(Recorded_life& life, std::string const& line, json const& object) {
    if (line == "event") {
        add_event(life, object);
    } else if (line == "counted") {
        add_counts(life, object);
    } else if (line == "missed") {
        life.missed += number_in(object, "count");
    } else if (line == "left") {
        life.is_left = true;
    } else if (line == "end") {
        life.end =
            Recorded_end{known_ending(text_in(object, "how")), number_in(object, "at"), number_in(object, "silent")};
    } else if (line == "alive") {
        add_setting(life, object);
    } else {
        return false;
    }
    life.taken = std::max(life.taken, number_in(object, "taken"));
    if (auto const at = number_in(object, "at"); at >= life.last_at) {
        life.last_at = at;
        life.last_real = real_in(life, object);
    }
    return true;
}

// A recorder that did not know what it had written before may have told an event twice.
void remove_repeated(std::vector<Recorded_event>& events) {
    auto const is_same = [](auto const& left, auto const& right) {
        return std::tie(left.kind, left.numbers, left.text) == std::tie(right.kind, right.numbers, right.text);
    };
    std::vector<Recorded_event> once;
    for (auto& event : events) {
        bool is_told = false;
        for (auto other = once.rbegin(); other != once.rend() && other->at == event.at; ++other) {
            is_told = is_told || is_same(*other, event);
        }
        if (!is_told) {
            once.push_back(std::move(event));
        }
    }
    events = std::move(once);
}

void read_file(Records& records, std::string const& name) {
    errno = 0;
    std::ifstream file(name, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (!line.empty()) {
            add_line(records, line);
        }
    }
    if (!file.is_open() || file.bad()) {
        records.unreadable.push_back(name + ": " + std::generic_category().message(errno));
    }
}

}  // namespace

void add_line(Records& records, std::string const& line) {
    ++records.lines;
    auto const object = line.size() > k_longest_line ? json() : json::parse(line, nullptr, false);
    auto const name = object.is_object() ? text_in(object, "line") : "";
    if (name == "life") {
        add_life(records, object);
    } else if (records.lives.empty() || !is_added(records.lives.back(), name, object)) {
        ++records.damaged;
    }
}

void finish(Records& records) {
    auto const is_earlier = [](auto const& left, auto const& right) { return left.at < right.at; };
    for (auto& life : records.lives) {
        std::stable_sort(life.events.begin(), life.events.end(), is_earlier);
        remove_repeated(life.events);
        std::stable_sort(life.counted.begin(), life.counted.end(), is_earlier);
    }
}

std::vector<Number> file_numbers(std::string const& directory) {
    std::error_code error;
    std::filesystem::directory_iterator const files(directory, error);
    if (error) {
        throw std::system_error(error, directory + ": the records can't be read");
    }
    std::vector<Number> numbers;
    for (auto const& entry : files) {
        auto const name = entry.path().filename().string();
        auto const digits = name.find_first_not_of("0123456789", std::string(k_prefix).size());
        bool const is_record = name.rfind(k_prefix, 0) == 0 && digits != std::string::npos &&
                               digits > std::string(k_prefix).size() && digits < 24 && name.substr(digits) == k_suffix;
        if (is_record) {
            numbers.push_back(std::stoull(name.substr(std::string(k_prefix).size())));
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

std::string file_name(std::string const& directory, Number number) {
    constexpr std::size_t k_digits = 6;
    auto const text = std::to_string(number);
    return directory + '/' + k_prefix + std::string(k_digits - std::min(k_digits, text.size()), '0') + text + k_suffix;
}

Records read_records(std::string const& directory, std::size_t files) {
    auto const numbers = file_numbers(directory);
    Records records;
    for (auto i = numbers.size() - std::min(files, numbers.size()); i < numbers.size(); ++i) {
        read_file(records, file_name(directory, numbers[i]));
    }
    finish(records);
    return records;
}

}  // namespace statectl::record
