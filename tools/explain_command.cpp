// All on one thread, after the command line was read: pieces of the file go into the reader, its whole messages to the
// narrator, and at the end of the file the narrator's story to the reports that were asked for.

#include "base/descriptor.h"
#include "tools/commands.h"
#include "tools/dlt/reader.h"
#include "tools/json_text.h"
#include "tools/signals.h"
#include "tools/table.h"
#include "tools/trace/follower.h"
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
#include <poll.h>
#include <unistd.h>

namespace statectl {

namespace {

struct Explain_options {
    std::string trace;
    std::string page;
    bool as_json{false};
    bool follows{false};
};

/// Waits for bytes, or for the user's wish to end; false for that one.
bool awaits_bytes(int descriptor, End_signals const& end) {
    std::array<pollfd, 2> sources{{{descriptor, POLLIN, 0}, {end.descriptor(), POLLIN, 0}}};
    while (::poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR) {
    }
    return sources[1].revents == 0;
}

/// Who ends a trace that goes on, has its report all the same.
trace::Story read_story(int descriptor, std::string const& name, bool follows) {
    constexpr std::size_t k_chunk = 65536;
    dlt::Reader reader;
    trace::Narrator narrator;
    trace::Follower follower;
    End_signals const end;
    std::array<char, k_chunk> chunk{};
    auto const hand_over = [&] {
        while (auto message = reader.next()) {
            if (follows) {
                std::fputs(follower.hear(*message).c_str(), stdout);
            }
            narrator.hear(std::move(*message));
        }
    };
    while (awaits_bytes(descriptor, end)) {
        std::fflush(stdout);
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

trace::Story story_of(std::string const& name, bool follows) {
    if (name == "-") {
        return read_story(STDIN_FILENO, "standard input", follows);
    }
    base::Descriptor const file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.is_open()) {
        throw std::system_error(errno, std::generic_category(), name + " can't be opened");
    }
    return read_story(file.number(), name, follows);
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
    auto const story = story_of(options.trace, options.follows);
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
        std::fputs(text_report(story, has_colours()).c_str(), stdout);
    }
    return k_success;
}

}  // namespace

void add_explain_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Explain_options>();
    auto* const command = program.add_subcommand("explain", "Tell the power life of a machine from its DLT trace");
    command->add_option("TRACE", options->trace, "DLT file; - for standard input")->required();
    auto* const json = command->add_flag("--json", options->as_json, "Print one JSON object");
    command->add_option("--html", options->page, "Write a page for a browser into a file");
    command->add_flag("--follow", options->follows, "Tell each state as it comes, before the whole")->excludes(json);
    command->callback([options, &chosen] { chosen = [options] { return explain(*options); }; });
}

}  // namespace statectl
