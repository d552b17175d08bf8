#ifndef TOOLS_PAGE_COMMANDS_H
#define TOOLS_PAGE_COMMANDS_H

#include "status/layout.h"
#include "tools/command.h"
#include "tools/page/page_view.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

namespace CLI {
class App;
}

namespace statectl {

// What the subcommands that read the status page have in common.

struct Page_options {
    std::string path{status::k_page_path};
    bool as_json{false};
    bool watches{false};
};

/// How one of them shows the page: for people, and for programs.
struct Page_show {
    std::function<std::string(Snapshot const& page)> text;
    std::function<nlohmann::json(Snapshot const& page)> json;
};

/// Adds a subcommand that shows the page once, or again with each change of it.
CLI::App& add_page_command(CLI::App& program, Action& chosen, char const* name, char const* description,
                           Page_show const& show);

}  // namespace statectl

#endif
