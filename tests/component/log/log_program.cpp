// log_program [TASK [MODES DIRECTORY]]: logs what the task tells, and ends. MODES is a number, 1 (the log daemon) by
// default.

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

void log_many(int count) {
    for (int number = 0; number < count; ++number) {
        ara::log::LogInfo() << "number" << number;
        if (number % 100 == 99) {
            ::usleep(1000);
        }
    }
}

void wait_for_end_of_input() {
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0) {
        if (byte == 'e') {
            ara::log::LogError() << "told of an error";
            continue;
        }
        ara::log::LogInfo() << "told";
        ara::log::LogDebug() << "told in detail";
    }
}

struct Logs_when_it_dies {
    ~Logs_when_it_dies() { ara::log::LogInfo() << "from the destructor of a static object"; }
};

}  // namespace

int main(int argc, char** argv) {
    std::string const task = argc > 1 ? argv[1] : "";
    ara::log::LogInfo() << "before logging was initialised";
    auto const mode = static_cast<ara::log::LogMode>(argc > 3 ? std::stoi(argv[2]) : 1);
    ara::log::InitLogging("PROG", "A program that logs", ara::log::LogLevel::kVerbose, mode, argc > 3 ? argv[3] : "");
    static Logs_when_it_dies const last;
    if (task == "types") {
        log_every_type();
    } else if (task == "long") {
        ara::log::LogInfo() << std::string(5000, 'x');
    } else if (task == "many") {
        log_many(2000);
    } else if (task == "many, told at the end") {
        log_many(2000);
        std::puts("logged");
        std::fflush(stdout);
    } else if (task == "initialise again") {
        ara::log::InitLogging("MORE", "The same program", ara::log::LogLevel::kOff, mode, "");
        ara::log::LogVerbose() << "still verbose";
    } else if (task == "wait") {
        ara::log::LogInfo() << "waiting";
        wait_for_end_of_input();
    }
    return EXIT_SUCCESS;
}
