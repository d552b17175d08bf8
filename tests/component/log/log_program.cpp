// log_program [TASK [MODES DIRECTORY]]: logs what the task tells, and ends. Task "wait" ends with its standard input,
// on which each byte tells what to log: e an error, m another thousand numbers, q three levels in a context that is
// made for two of them, anything else two levels. MODES is a number, 1 (the log daemon) by default.

#include "ara/log/logging.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

void log_every_type() {
    ara::log::LogInfo() << "types" << std::string("text") << true << std::int8_t{-8} << std::int16_t{-16} << -32
                        << std::numeric_limits<std::int64_t>::min() << std::uint8_t{8} << std::uint16_t{16} << 32U
                        << std::numeric_limits<std::uint64_t>::max() << std::vector<std::uint8_t>{0xbe, 0xef};
    ara::log::CreateLogger("OTHR", "Another context").LogWarn() << "from another context";
}

// As many as the log's queue holds, so that none is lost also while the writer gets no processor; and longer than what
// the log daemon's pipe holds, so that libdlt has to keep some when the daemon does not read.
constexpr int k_many = 1000;

void log_many(int first) {
    std::string const padding(100, 'x');
    for (int number = first; number < first + k_many; ++number) {
        ara::log::LogInfo() << "number" << number << padding;
    }
}

void log_told() {
    ara::log::LogInfo() << "told";
    ara::log::LogDebug() << "told in detail";
}

void log_quietly() {
    static auto& quiet = ara::log::CreateLogger("QUIT", "A quiet context", ara::log::LogLevel::kWarn);
    quiet.LogError() << "quiet error";
    quiet.LogInfo() << "quiet info";
    quiet.LogWarn() << "quiet warning";
}

void do_as_told() {
    int next = 0;
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0) {
        switch (byte) {
            case 'e':
                ara::log::LogError() << "told of an error";
                break;
            case 'm':
                log_many(next);
                next += k_many;
                break;
            case 'q':
                log_quietly();
                break;
            default:
                log_told();
        }
    }
}

struct Logs_when_it_dies {
    ~Logs_when_it_dies() { ara::log::LogInfo() << "from the destructor of a static object"; }
};

}  // namespace

int main(int argc, char** argv) {
    std::string const task = argc > 1 ? argv[1] : "";
    ara::log::LogInfo() << "before logging was initialised";
    std::atexit([] { ara::log::LogInfo() << "when all is over"; });  // after the log has ended
    auto const mode = static_cast<ara::log::LogMode>(argc > 3 ? std::stoi(argv[2]) : 1);
    ara::log::InitLogging("PROG", "A program that logs", ara::log::LogLevel::kVerbose, mode, argc > 3 ? argv[3] : "");
    static Logs_when_it_dies const last;
    if (task == "types") {
        log_every_type();
    } else if (task == "long") {
        ara::log::LogInfo() << std::string(5000, 'x');
    } else if (task == "many") {
        log_many(0);
    } else if (task == "many, told at the end") {
        log_many(0);
        std::puts("logged");
        std::fflush(stdout);
    } else if (task == "initialise again") {
        ara::log::InitLogging("MORE", "The same program", ara::log::LogLevel::kOff, mode, "");
        ara::log::LogVerbose() << "still verbose";
    } else if (task == "wait") {
        ara::log::LogInfo() << "waiting";
        do_as_told();
    }
    return EXIT_SUCCESS;
}
