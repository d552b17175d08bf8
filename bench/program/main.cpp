// The virtual vehicle: `vehicle` in a terminal is a console on which to press the hypervisor's keys; `vehicle --tour`,
// and `vehicle` without a terminal, go through the states by themselves and check each step.

#include "bench/console/console.h"
#include "bench/console/terminal_check.h"
#include "bench/process/child_process.h"
#include "bench/tour/picture.h"
#include "bench/tour/tour.h"
#include "bench/vehicle/vehicle.h"
#include "bench/vehicle/world.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using bench::vehicle::Options;
using bench::vehicle::Vehicle;

constexpr int k_usage_error = 2;

void print_usage(std::FILE* out) {
    std::fputs(
        "usage: vehicle [--tour] [--picture FILE] [--trace FILE] [--with COMMAND]\n"
        "  --tour          go through the states and check each step; exit status 0 when every step was seen\n"
        "  --picture FILE  where the tour's timeline is drawn (SVG; default: tour/timeline.svg in the build)\n"
        "  --trace FILE    where the log is stored (DLT; ap_statectl explain reads it)\n"
        "  --with COMMAND  runs it in the vehicle, beside the console; its output is in with.log in the build\n"
        "  --help          show this\n",
        out);
}

std::string content_of(fs::path const& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(path.string() + " can't be read");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

Options complete_machine(fs::path const& build, std::ostream* trace) {
    auto configuration =
        nlohmann::json::parse(content_of(fs::path(VEHICLE_PROJECT) / "deploy/config/ap_statemanager.json"));
    configuration.merge_patch(bench::tour::configuration_changes());
    Options options;
    options.programs = build.string();
    options.configuration = configuration.dump(4);
    options.with_network = true;
    options.trace = trace;
    return options;
}

/// A file for the tour's picture, or for the log. It is opened outside, because the machine's own /tmp ends with it.
struct Kept_file {
    fs::path path;
    std::ofstream stream;
};

Kept_file open_first(std::vector<fs::path> const& places) {
    for (auto const& place : places) {
        std::error_code ignored;
        fs::create_directories(place.parent_path(), ignored);
        if (std::ofstream stream(place); stream) {
            return {place, std::move(stream)};
        }
    }
    throw std::runtime_error(places.front().string() + " can't be written");
}

// A build that belongs to somebody else is not written to.
std::vector<fs::path> usual_places(fs::path const& build) {
    auto const own = "vehicle-" + std::to_string(::getuid()) + "/timeline.svg";
    return {build / "tour/timeline.svg", fs::temp_directory_path() / own};
}

int tour(fs::path const& build, Kept_file& picture, std::ostream* trace) {
    Vehicle vehicle(complete_machine(build, trace));
    auto const steps = bench::tour::steps();
    bool const has_spectators = ::isatty(STDOUT_FILENO) != 0;
    auto const findings =
        bench::tour::walk(vehicle, steps, Vehicle::k_patience,
                          has_spectators ? bench::tour::k_spectators_pause : std::chrono::milliseconds(0));
    bool all_seen = bench::tour::print_summary(findings);
    all_seen = bench::tour::print_rows(steps, findings) && all_seen;
    if (!(picture.stream << bench::tour::draw(vehicle.events()) << std::flush)) {
        std::fprintf(stderr, "%s can't be written\n", picture.path.c_str());
        return EXIT_FAILURE;
    }
    std::printf("Timeline: %s\n", picture.path.c_str());
    std::fflush(stdout);
    return all_seen ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// A user's own program among the vehicle's; it ends with it. All processes of the command, a group of their own, get
/// SIGTERM; the shell among them waits for the one that it runs.
class Guest {
 public:
    Guest(std::string const& command, fs::path const& log)
        : process_(
              {"setsid", "sh", "-c", "exec >\"$0\" 2>&1; trap 'exit 143' TERM; eval \"$1\"", log.string(), command},
              {}) {}
    ~Guest() {
        if (::kill(-process_.pid(), SIGTERM) != 0) {
            process_.signal(SIGTERM);  // it is no group yet
        }
        process_.wait(Vehicle::k_patience);
    }
    Guest(Guest const&) = delete;
    Guest& operator=(Guest const&) = delete;

 private:
    bench::Child_process process_;
};

int console(fs::path const& build, std::ostream* trace, std::string const& guests_command) {
    auto const options = complete_machine(build, trace);
    Vehicle vehicle(options);
    // The example waits a minute for a client, which is longer than a spectator does.
    vehicle.change_configuration(
        {{"ap_statemanager", {{"ApplicationSuspendRequestTimeout", 10}, {"DMSuspendRequestTimeout", 10}}}});
    std::optional<Guest> guest;
    if (!guests_command.empty()) {
        guest.emplace(guests_command, build / "with.log");
    }
    return bench::console::run(vehicle, "/tmp/stderr",
                               services::layout_in(nlohmann::json::parse(options.configuration)));
}

bool has_terminal() {
    return ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0;
}

/// What the command line asks for.
struct Choice {
    std::vector<fs::path> pictures;
    bool touring{!has_terminal()};
    fs::path trace{};
    std::string guests_command{};
};

// The exit status when there is nothing else to do.
std::optional<int> read_words(std::vector<std::string> const& words, Choice& choice) {
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (*word == "--picture" && word + 1 != words.end()) {
            choice.pictures = {fs::absolute(*++word)};
        } else if (*word == "--trace" && word + 1 != words.end()) {
            choice.trace = fs::absolute(*++word);
        } else if (*word == "--with" && word + 1 != words.end()) {
            choice.guests_command = *++word;
        } else if (*word == "--tour") {
            choice.touring = true;
        } else {
            bool const is_help = *word == "--help";
            print_usage(is_help ? stdout : stderr);
            return is_help ? EXIT_SUCCESS : k_usage_error;
        }
    }
    if (choice.touring && !choice.guests_command.empty()) {
        std::fputs("vehicle: --with is for the console, not for the tour\n", stderr);
        return k_usage_error;
    }
    if (auto const why = choice.touring ? std::string() : bench::console::why_no_console(); !why.empty()) {
        std::fprintf(stderr, "vehicle: %s\n", why.c_str());
        return EXIT_FAILURE;
    }
    return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
    auto const build = fs::read_symlink("/proc/self/exe").parent_path().parent_path().parent_path();
    Choice choice{usual_places(build)};
    if (auto const status = read_words({argv + 1, argv + argc}, choice)) {
        return *status;
    }
    try {
        auto picture = choice.touring ? open_first(choice.pictures) : Kept_file{};
        auto trace = choice.trace.empty() ? Kept_file{} : open_first({choice.trace});
        auto* const log = choice.trace.empty() ? nullptr : &trace.stream;
        return bench::vehicle::run_inside(VEHICLE_PROJECT, [&] {
            return choice.touring ? tour(build, picture, log) : console(build, log, choice.guests_command);
        });
    } catch (std::exception const& error) {
        std::fprintf(stderr, "vehicle: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
