#ifndef TESTS_UNIT_RECORDER_LINES_H
#define TESTS_UNIT_RECORDER_LINES_H

#include "tools/record/power_cycles.h"

#include <string>
#include <vector>

namespace statectl::record {

constexpr Number k_second = 1'000'000'000;

// Lines as the recorder writes them.

inline std::string life_line(std::string const& boot, Number number, Number from = 0, Number state = 0) {
    return R"({"line":"life","version":1,"boot":")" + boot + R"(","life":)" + std::to_string(number) +
           R"(,"pid":7,"started":0,"started_real":1000000000,"from":)" + std::to_string(from) + R"(,"state":)" +
           std::to_string(state) + "}";
}

inline std::string event_line(char const* event, Number at, std::string const& numbers, std::string const& text = "") {
    return R"({"line":"event","at":)" + std::to_string(at) + R"(,"real":)" + std::to_string(at + 1'000'000'000) +
           R"(,"event":")" + event + R"(","numbers":[)" + numbers + R"(],"text":")" + text + R"("})";
}

inline std::string end_line(char const* how, Number at) {
    return R"({"line":"end","at":)" + std::to_string(at) + R"(,"real":)" + std::to_string(at + 1'000'000'000) +
           R"(,"how":")" + how + R"(","silent":0})";
}

inline Records records_of(std::vector<std::string> const& lines) {
    Records records;
    for (auto const& line : lines) {
        add_line(records, line);
    }
    finish(records);
    return records;
}

inline std::vector<std::string> endings_of(std::vector<std::string> const& lines, Present const& present) {
    std::vector<std::string> texts;
    for (auto const& cycle : power_cycles(records_of(lines), present)) {
        texts.push_back(cycle.told.ending);
    }
    return texts;
}

}  // namespace statectl::record

#endif
