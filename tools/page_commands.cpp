#include "tools/page_commands.h"

#include "tools/json_text.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <memory>

namespace statectl {

namespace {

constexpr auto k_longest_wait = std::chrono::seconds(1);

void print(Page_options const& options, Page_show const& show, Snapshot const& page) {
    if (options.as_json) {
        std::puts(json_text(show.json(page), options.watches ? -1 : 2).c_str());
    } else {
        std::fputs(show.text(page).c_str(), stdout);
    }
    std::fflush(stdout);
}

// Until the daemon ends, or another one is started: this page will not change any more.
void watch(Page_options const& options, Page_show const& show, Page_view const& view) {
    for (;;) {
        auto const seen = view.events();
        auto const page = view.snapshot();
        print(options, show, page);
        if (!page.is_alive || std::ferror(stdout) != 0) {
            return;
        }
        if (!options.as_json) {
            std::puts("");
        }
        view.await_events(seen, k_longest_wait);
    }
}

int show_page(Page_options const& options, Page_show const& show) {
    Page_view const view(options.path);
    if (options.watches) {
        watch(options, show, view);
        return k_failure;
    }
    auto const page = view.snapshot();
    print(options, show, page);
    return page.is_alive ? k_success : k_failure;
}

}  // namespace

CLI::App& add_page_command(CLI::App& program, Action& chosen, char const* name, char const* description,
                           Page_show const& show) {
    auto const options = std::make_shared<Page_options>();
    auto* const command = program.add_subcommand(name, description);
    command->add_option("--page", options->path, "The status page's file")->capture_default_str();
    command->add_flag("--json", options->as_json, "Print JSON");
    command->add_flag("--watch", options->watches, "Again with each change, and once a second, until the daemon ends");
    command->callback([options, show, &chosen] { chosen = [options, show] { return show_page(*options, show); }; });
    return *command;
}

}  // namespace statectl
