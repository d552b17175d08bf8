#include "held_restarts.h"

#include "life_texts.h"

namespace lives {

void Held_restarts::take_call(std::string const& what) {
    check();
    auto const kind = behind("requests restart ", what);
    is_first_ = true;
    owed_.clear();
    if (kind == "1") {
        owed_ = {"restartao"};
    } else if (kind == "5") {
        owed_ = {"restartm3"};
    }
}

void Held_restarts::take_word(std::string const& fate, std::string const& word) {
    if (owed_.empty() || owed_.front() != word) {
        return find_("the restart word " + word + " is not what was asked for");
    }
    owed_.pop_front();
    if (is_first_ && fate == "refused") {
        owed_ = {"cancel", word};
    }
    is_first_ = false;
}

void Held_restarts::check() {
    if (!owed_.empty()) {
        find_("the restart word " + owed_.front() + " was not written");
        owed_.clear();
    }
}

}  // namespace lives
