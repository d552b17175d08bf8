#include "tools/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

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

// As CLI11 describes a value of which there is a list: "TEXT:{a,b}", "INT:value in {a->1,b->2} OR {1,2}".
std::vector<std::string> values_of(CLI::Option const& option) {
    auto const type = option.get_type_name();
    auto const begin = type.find('{');
    auto const end = type.find('}', std::min(begin, type.size()));
    std::vector<std::string> values;
    if (end != std::string::npos) {
        std::istringstream list(type.substr(begin + 1, end - begin - 1));
        for (std::string value; std::getline(list, value, ',');) {
            values.push_back(value.substr(0, value.find("->")));
        }
    }
    return values;
}

// Those of the positional argument that the last word is.
std::vector<std::string> values_in_place(CLI::App const& app, std::vector<std::string> const& words) {
    std::size_t place = 0;
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        bool const is_value = i > 0 && takes_value(app, words[i - 1]);
        place += words[i].rfind('-', 0) == 0 || is_value ? 0 : 1;
    }
    auto const positional = app.get_options([](CLI::Option const* option) { return option->get_positional(); });
    return place < positional.size() ? values_of(*positional[place]) : std::vector<std::string>();
}

}  // namespace

std::vector<std::string> completions(CLI::App const& program, std::vector<std::string> const& words) {
    if (words.empty()) {
        return {};
    }
    auto const* app = &program;
    auto rest = words.begin();  // behind the subcommand
    for (auto word = words.begin(); word != words.end() - 1; ++word) {
        if (*word == "--") {
            return {};
        }
        if (auto const* const command = subcommand_named(*app, *word)) {
            app = command;
            rest = word + 1;
        }
    }
    bool const is_value = words.size() > 1 && takes_value(*app, words[words.size() - 2]);
    auto names = is_value ? values_of(*app->get_option_no_throw(words[words.size() - 2]))
                          : values_in_place(*app, {rest, words.end()});
    if (!is_value) {
        auto const others = names_in(*app);
        names.insert(names.end(), others.begin(), others.end());
    }
    auto const& typed = words.back();
    names.erase(
        std::remove_if(names.begin(), names.end(), [&](std::string const& name) { return name.rfind(typed, 0) != 0; }),
        names.end());
    return names;
}

}  // namespace statectl
