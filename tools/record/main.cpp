// ap_statemanager_recorder: writes down what the status page tells, so that it outlives a reboot. See
// ap_statemanager_recorder(8).

#include "base/end_signals.h"
#include "tools/record/recorder.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

#include <sys/prctl.h>

namespace {

using namespace statectl;  // NOLINT(google-build-using-namespace): everything here is its
using record::Look;
using record::Recorder;

constexpr auto k_look = std::chrono::seconds(1);
constexpr auto k_look_for_page = std::chrono::milliseconds(100);
constexpr Number k_farewell = 1'000'000'000;  // for a daemon that is stopped together with this program

constexpr int k_usage = 2;

volatile std::sig_atomic_t is_to_end = 0;

struct Options {
    std::string directory{record::k_directory};
    std::string page{status::k_page_path};
    double watchdog{20};
};

template <class Clock>
Number now() {
    return static_cast<Number>(std::chrono::nanoseconds(Clock::now().time_since_epoch()).count());
}

Number since_boot() {
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return static_cast<Number>(time.tv_sec) * 1'000'000'000 + static_cast<Number>(time.tv_nsec);
}

// A process that stands still between two of the clocks takes the time for one that the clock was set by.
Look look_at(Number events) {
    constexpr Number k_long = 100'000'000;
    Look look{};
    for (int tries = 0; tries < 5; ++tries) {
        auto const at = now<std::chrono::steady_clock>();
        auto const boot = since_boot();
        look = {at, now<std::chrono::system_clock>(), events, boot - std::min(boot, at)};
        if (now<std::chrono::steady_clock>() - at < k_long) {
            break;
        }
    }
    return look;
}

/// Says once what is wrong, and once that it is well again: into the journal.
class Complaint {
 public:
    void about(std::string const& trouble) {
        if (trouble != told_) {
            std::fprintf(stderr, "%s\n", trouble.empty() ? "all is well again" : trouble.c_str());
            told_ = trouble;
        }
    }

 private:
    std::string told_;
};

std::unique_ptr<Page_view> opened(std::string const& path, Complaint& complaint) {
    try {
        auto view = std::make_unique<Page_view>(path);
        complaint.about("");
        return view;
    } catch (No_page const& error) {
        if (error.kind != No_page::Kind::missing) {
            complaint.about(error.what());
        }
        return nullptr;
    }
}

void show(Recorder& recorder, Page_view const& view) {
    auto const events = view.events();
    auto const page = view.snapshot();
    recorder.look(page, look_at(events));
}

record::Records records_before(std::string const& directory, Complaint& complaint) {
    constexpr std::size_t k_newest = 2;
    try {
        return record::read_records(directory, k_newest);
    } catch (std::system_error const& error) {
        complaint.about(error.what());
        return {};
    }
}

void show_previous(Options const& options, Recorder& recorder, Complaint& complaint) {
    auto const earlier = opened(options.page + status::k_previous, complaint);
    if (earlier) {
        show(recorder, *earlier);
    }
}

// The page of the daemon that was started last. The one before it may have come and gone since the look before.
std::unique_ptr<Page_view> newest(Options const& options, Recorder& recorder, Complaint& complaint) {
    auto view = opened(options.page, complaint);
    if (view) {
        show_previous(options, recorder, complaint);
    }
    return view;
}

// Goes on for a moment after the wish to end: the daemon's farewell may be on its way.
void follow(Options const& options, Recorder& recorder, record::Record_files const& files, Complaint& disk) {
    Complaint complaint;
    show_previous(options, recorder, complaint);
    std::unique_ptr<Page_view> view;
    for (Number end_at = 0;;) {
        if (view && view->is_outdated()) {
            show(recorder, *view);
            view.reset();
        }
        view = view ? std::move(view) : newest(options, recorder, complaint);
        auto const seen = view ? view->events() : 0;
        bool is_alive = false;
        if (view) {
            auto const page = view->snapshot();
            recorder.look(page, look_at(seen));
            is_alive = page.is_alive;
        }
        disk.about(files.trouble());
        auto const time = now<std::chrono::steady_clock>();
        end_at = is_to_end != 0 && end_at == 0 ? time + k_farewell : end_at;
        if (is_to_end != 0 && (!is_alive || time >= end_at)) {
            return;
        }
        if (is_alive) {
            view->await_events(seen, end_at == 0 ? std::chrono::nanoseconds(k_look) : k_look_for_page);
        } else {
            std::this_thread::sleep_for(k_look_for_page);
        }
    }
}

void run(Options const& options) {
    Complaint disk;
    record::Record_files files(options.directory);
    Recorder recorder(files, records_before(options.directory, disk), static_cast<Number>(options.watchdog * 1e9));
    follow(options, recorder, files, disk);
    recorder.leave(look_at(0));
    disk.about(files.trouble());
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Options options;
        if (auto const* const directory = std::getenv("STATE_DIRECTORY")) {
            options.directory = directory;
        }
        CLI::App program("Writes down what the machine's status page tells", "ap_statemanager_recorder");
        program.set_version_flag("--version", "ap_statemanager_recorder " STATECTL_VERSION);
        program.add_option("--directory", options.directory, "Where the records lie")->capture_default_str();
        program.add_option("--page", options.page, "The status page's file")->capture_default_str();
        program.add_option("--watchdog", options.watchdog, "Seconds without a beat after which it was the watchdog")
            ->capture_default_str();
        try {
            program.parse(argc, argv);
        } catch (CLI::ParseError const& error) {
            return program.exit(error) == 0 ? EXIT_SUCCESS : k_usage;
        }
        if (!(options.watchdog >= 0.1 && options.watchdog <= 1e9)) {
            std::fputs("--watchdog: seconds, from 0.1 to 1,000,000,000\n", stderr);
            return k_usage;
        }
        // A process's name has 15 characters: the daemon's, of this one as it stands.
        ::prctl(PR_SET_NAME, "ap_sm_recorder");
        base::handle_end_signals([](int /*number*/) { is_to_end = 1; });
        run(options);
        return EXIT_SUCCESS;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "ap_statemanager_recorder: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
