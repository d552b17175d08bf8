// All on one thread, after the command line was read: pieces of the file go into the reader, its whole messages to the
// narrator, and at the end of the file the narrator's story to the reports that were asked for.

#include "base/descriptor.h"
#include "tools/commands.h"
#include "tools/dlt/reader.h"
#include "tools/json_text.h"
#include "tools/trace/narrator.h"
#include "tools/trace/reports.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace statectl {

namespace {

struct Explain_options {
    std::string trace;
    std::string page;
    bool as_json = false;
};

trace::Story read_story(int descriptor, std::string const& name) {
    constexpr std::size_t k_chunk = 65536;
    dlt::Reader reader;
    trace::Narrator narrator;
    std::array<char, k_chunk> chunk{};
    auto const hand_over = [&] {
        while (auto message = reader.next()) {
            narrator.hear(std::move(*message));
        }
    };
    for (;;) {
        auto const count = ::read(descriptor, chunk.data(), chunk.size());
        if (count < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), name + " can't be read");
        }
        if (count == 0) {
            break;
        }
        if (count > 0) {
            reader.add({chunk.data(), static_cast<std::size_t>(count)});
            hand_over();
        }
    }
    reader.end();
    hand_over();
    return narrator.end(reader);
}

trace::Story story_of(std::string const& name) {
    if (name == "-") {
        return read_story(STDIN_FILENO, "standard input");
    }
    base::Descriptor const file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.is_open()) {
        throw std::system_error(errno, std::generic_category(), name + " can't be opened");
    }
    return read_story(file.number(), name);
}

void write_page(trace::Story const& story, Explain_options const& options) {
    auto const title =
        options.trace == "-" ? "standard input" : std::filesystem::path(options.trace).filename().string();
    std::ofstream file(options.page, std::ios::binary);
    file << html_report(story, title) << std::flush;
    if (!file) {
        throw std::runtime_error(options.page + " can't be written");
    }
}

int explain(Explain_options const& options) {
    auto const story = story_of(options.trace);
    if (story.messages == 0) {
        throw std::runtime_error(options.trace + " holds no DLT message (" + std::to_string(story.skipped_bytes) +
                                 " bytes)");
    }
    if (story.lives.empty()) {
        throw std::runtime_error(options.trace + " holds no message of the state manager (application STMG) among " +
                                 std::to_string(story.messages));
    }
    if (!options.page.empty()) {
        write_page(story, options);
    }
    if (options.as_json) {
        std::puts(json_text(json_report(story), 2).c_str());
    } else if (options.page.empty()) {
        std::fputs(text_report(story, ::isatty(STDOUT_FILENO) != 0).c_str(), stdout);
    }
    return k_success;
}

}  // namespace

void add_explain_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Explain_options>();
    auto* const command = program.add_subcommand("explain", "Tell the power life of a machine from its DLT trace");
    command->add_option("TRACE", options->trace, "DLT file; - for standard input")->required();
    command->add_flag("--json", options->as_json, "Print one JSON object");
    command->add_option("--html", options->page, "Write a page for a browser into a file");
    command->callback([options, &chosen] { chosen = [options] { return explain(*options); }; });
}

}  // namespace statectl
