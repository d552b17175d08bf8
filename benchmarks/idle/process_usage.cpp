#include "process_usage.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace benchmarks {

namespace {

std::string proc(pid_t process) {
    return "/proc/" + std::to_string(process);
}

std::int64_t value_of(pid_t process, std::string const& name) {
    std::ifstream status(proc(process) + "/status");
    for (std::string word; status >> word;) {
        std::int64_t value = 0;
        if (word == name + ":" && status >> value) {
            return value;
        }
    }
    return 0;
}

}  // namespace

std::int64_t processor_time_ns(pid_t process) {
    std::int64_t sum = 0;
    for (auto const& thread : std::filesystem::directory_iterator(proc(process) + "/task")) {
        std::int64_t running = 0;  // the first number of schedstat
        std::ifstream(thread.path() / "schedstat") >> running;
        sum += running;
    }
    return sum;
}

Memory memory_of(pid_t process) {
    return {value_of(process, "VmRSS"), value_of(process, "RssAnon")};
}

}  // namespace benchmarks
