#include "simulation/script_line.h"

#include <chrono>

namespace simulation {

namespace {

constexpr std::string_view k_blanks = " \t\r";
constexpr Time k_longest = std::chrono::hours(24);

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

/// Nothing for a unit that there is not.
std::optional<Time> unit_of(std::string_view text) {
    if (text == "ms") {
        return std::chrono::milliseconds(1);
    }
    if (text == "s") {
        return std::chrono::seconds(1);
    }
    return text == "min" ? std::optional<Time>(std::chrono::minutes(1)) : std::nullopt;
}

/// Nothing for a text that is no time, or a longer one than a day. Whole nanoseconds; what is below is left out.
std::optional<Time> time_of(std::string_view text) {
    std::size_t digits = 0;
    while (digits < text.size() && (is_digit(text[digits]) || text[digits] == '.')) {
        ++digits;
    }
    auto const unit = unit_of(text.substr(digits));
    auto const number = text.substr(0, digits);
    auto const point = number.find('.');
    auto const whole = number.substr(0, point);
    if (!unit || whole.empty() || whole.size() > 8 || number.find('.', point + 1) != std::string_view::npos) {
        return std::nullopt;
    }
    Time::rep value = 0;
    for (char const digit : whole) {
        value = value * 10 + (digit - '0');
    }
    Time time = *unit * value;
    Time step = *unit;
    for (char const digit : point == std::string_view::npos ? std::string_view() : number.substr(point + 1)) {
        step /= 10;
        time += step * (digit - '0');
    }
    return time <= k_longest ? std::optional<Time>(time) : std::nullopt;
}

std::string in_quotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

}  // namespace

Script_line::Script_line(unsigned number, std::string_view text) : number_(number), text_(text) {
    std::size_t place = 0;
    while ((place = text_.find_first_not_of(k_blanks, place)) != std::string_view::npos && text_[place] != '#') {
        auto end = text_[place] == ',' ? place + 1 : text_.find_first_of(" \t\r,", place);
        end = end == std::string_view::npos ? text_.size() : end;
        words_.push_back(text_.substr(place, end - place));
        place = end;
    }
}

bool Script_line::take(std::string_view word) {
    bool const is_there = peek() == word && !at_end();
    place_ += is_there ? 1 : 0;
    return is_there;
}

std::string Script_line::next(char const* what) {
    if (at_end() || peek() == ",") {
        refuse_next(std::string("here ") + what + " is missing");
    }
    return std::string(words_[place_++]);
}

std::size_t Script_line::one_of(char const* what, std::initializer_list<std::string_view> words) {
    auto const word = at_end() ? std::string() : next(what);
    std::string all;
    std::size_t place = 0;
    for (auto const known : words) {
        if (word == known) {
            return place;
        }
        all += (place++ == 0 ? "" : ", ") + std::string(known);
    }
    if (word.empty()) {
        refuse_next(std::string("here ") + what + " is missing: " + all);
    }
    refuse_last(in_quotes(word) + " is not " + what + ": " + all);
}

std::string Script_line::known(char const* what, std::vector<std::string> const& words) {
    auto word = next(what);
    std::string all;
    for (auto const& known : words) {
        if (word == known) {
            return word;
        }
        all += (all.empty() ? "" : ", ") + known;
    }
    refuse_last(in_quotes(word) + " is not " + what + ": " + all);
}

Time Script_line::time(char const* what) {
    auto const word = next(what);
    auto const time = time_of(word);
    if (!time) {
        refuse_last(in_quotes(word) + " is no time of at most a day, like 100ms, 1.5s or 2min");
    }
    return *time;
}

std::uint64_t Script_line::whole_number(char const* what, std::uint64_t most) {
    auto const word = next(what);
    std::uint64_t number = 0;
    for (char const digit : word) {
        number = is_digit(digit) && number <= most ? number * 10 + static_cast<std::uint64_t>(digit - '0') : most + 1;
    }
    if (number > most) {
        refuse_last(in_quotes(word) + " is not " + what + ", a whole number of at most " + std::to_string(most));
    }
    return number;
}

std::string Script_line::rest(char const* what) {
    if (at_end()) {
        refuse_next(std::string("here ") + what + " is missing");
    }
    auto const begin = static_cast<std::size_t>(words_[place_].data() - text_.data());
    auto const end = static_cast<std::size_t>(words_.back().data() - text_.data()) + words_.back().size();
    place_ = words_.size();
    return std::string(text_.substr(begin, end - begin));
}

void Script_line::require_end() const {
    if (!at_end()) {
        refuse_next(in_quotes(peek()) + " is more than this line has");
    }
}

void Script_line::refuse_last(std::string const& why) const {
    throw Script_error(number_, column_of(place_ - 1), why);
}

void Script_line::refuse_next(std::string const& why) const {
    throw Script_error(number_, column_of(place_), why);
}

// Counted from 1; behind the last word there is the end of the line.
unsigned Script_line::column_of(std::size_t place) const {
    if (place < words_.size()) {
        return static_cast<unsigned>(words_[place].data() - text_.data()) + 1;
    }
    if (words_.empty()) {
        return 1;
    }
    return static_cast<unsigned>(words_.back().data() - text_.data()) + static_cast<unsigned>(words_.back().size()) + 1;
}

}  // namespace simulation
