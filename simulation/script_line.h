#ifndef SIMULATION_SCRIPT_LINE_H
#define SIMULATION_SCRIPT_LINE_H

#include "simulation/script.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace simulation {

/// The words of one line of a script, taken one after the other. A comma is a word; "#" begins a comment.
class Script_line {
 public:
    Script_line(unsigned number, std::string_view text);

    unsigned number() const { return number_; }

    /// Of the next word, from 1.
    unsigned column() const { return column_of(place_); }
    bool at_end() const { return place_ == words_.size(); }

    /// The next word, "" at the end.
    std::string_view peek() const { return at_end() ? std::string_view() : words_[place_]; }

    /// Takes the next word if it is this one.
    bool take(std::string_view word);

    /// Takes a word that has to be there; `what` names it where it is not.
    std::string next(char const* what);

    /// Takes one of some words, and tells which.
    std::size_t one_of(char const* what, std::initializer_list<std::string_view> words);

    /// Takes one of some words.
    std::string known(char const* what, std::vector<std::string> const& words);

    /// Takes "100ms", "1.5s" or "2min", at most a day.
    Time time(char const* what);

    /// Takes a whole number.
    std::uint64_t whole_number(char const* what, std::uint64_t most);

    /// Takes the rest of the line as it is, without a comment's end.
    std::string rest(char const* what);

    void require_end() const;

    /// Complains about the word that was taken last, or the one that comes.
    [[noreturn]] void refuse_last(std::string const& why) const;
    [[noreturn]] void refuse_next(std::string const& why) const;

 private:
    unsigned column_of(std::size_t place) const;

    unsigned number_;
    std::string_view text_;
    std::vector<std::string_view> words_;
    std::size_t place_{0};
};

}  // namespace simulation

#endif
