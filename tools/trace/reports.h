#ifndef TOOLS_TRACE_REPORTS_H
#define TOOLS_TRACE_REPORTS_H

#include "tools/trace/life.h"

#include <nlohmann/json.hpp>
#include <string>

namespace statectl::trace {

// A story told in three ways. Names in it are bytes of somebody's choice.

/// For people, in a terminal.
std::string text_report(Story const& story, bool is_coloured);

/// One life of it, without its heading.
std::string text_of(Life const& life);

/// For programs.
nlohmann::json json_report(Story const& story);

/// What a story is made of, in its reader's words.
struct Parts {
    char const* life{"life of the state manager"};
    char const* lives{"lives of the state manager"};
    char const* message{"message"};
    char const* messages{"messages"};
};

/// For people, as a page that needs nothing else.
std::string html_report(Story const& story, std::string const& title, Parts const& parts = {});

}  // namespace statectl::trace

#endif
