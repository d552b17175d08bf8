#include "tools/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace statectl {

namespace {

CLI::App const* subcommand_named(CLI::App const& app, std::string const& word) {
    auto const found = app.get_subcommands([&](CLI::App const* command) { return command->check_name(word); });
    return found.empty() ? nullptr : found.front();
}

std::vector<std::string> names_in(CLI::App const& app) {
    std::vector<std::string> names;
    for (auto const* const command : app.get_subcommands([](CLI::App const*) { return true; })) {
        names.push_back(command->get_name());
    }
    for (auto const* const option : app.get_options()) {
        for (auto const& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

bool takes_value(CLI::App const& app, std::string const& word) {
    auto const* const option = app.get_option_no_throw(word);
    return option != nullptr && option->nonpositional() && option->get_items_expected_max() > 0;
}

}  // namespace

std::vector<std::string> completions(CLI::App const& program, std::vector<std::string> const& words) {
    if (words.empty()) {
        return {};
    }
    auto const* app = &program;
    for (auto word = words.begin(); word != words.end() - 1; ++word) {
        if (*word == "--") {
            return {};
        }
        if (auto const* const command = subcommand_named(*app, *word)) {
            app = command;
        }
    }
    if (words.size() > 1 && takes_value(*app, words[words.size() - 2])) {
        return {};
    }
    auto names = names_in(*app);
    auto const& typed = words.back();
    names.erase(
        std::remove_if(names.begin(), names.end(), [&](std::string const& name) { return name.rfind(typed, 0) != 0; }),
        names.end());
    return names;
}

}  // namespace statectl
