#include "bench/console/terminal_check.h"

#include <cstdlib>

#include <unistd.h>

#define NCURSES_NOMACROS
#include <curses.h>
#include <term.h>

namespace bench::console {

std::string why_no_console() {
    char const* const name = std::getenv("TERM");
    auto const terminal = std::string("the terminal (TERM is ") +
                          (name == nullptr || *name == '\0' ? "not set" : "\"" + std::string(name) + "\"") + ") ";
    auto const remedy = std::string("; set TERM to what it is, or use --tour");
    int found = 0;
    if (name == nullptr || *name == '\0' || ::setupterm(name, STDOUT_FILENO, &found) != OK) {
        return terminal + "is not known" + remedy;
    }
    bool const can_place_text = ::tigetstr("cup") != nullptr;
    ::del_curterm(::cur_term);
    return can_place_text ? "" : terminal + "can't place text on its screen" + remedy;
}

}  // namespace bench::console
