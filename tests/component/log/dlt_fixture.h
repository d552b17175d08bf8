#ifndef TESTS_COMPONENT_LOG_DLT_FIXTURE_H
#define TESTS_COMPONENT_LOG_DLT_FIXTURE_H

#include "bench/process/child_process.h"
#include "bench/vehicle/dlt_reader.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

namespace log_test {

using bench::Child_process;
using bench::vehicle::Dlt_reader;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds k_patience{20000};
constexpr char const* k_last_words = "from the destructor of a static object";

/// A program that logs, and the log daemons and viewers that a test makes.
class Dlt : public testing::Test {
 protected:
    static Child_process started(std::string const& task, std::vector<std::string> const& environment = {}) {
        return {{LOG_PROGRAM, task}, environment};
    }

    void run(std::string const& task) {
        auto program = started(task);
        ASSERT_EQ(program.wait(k_patience), 0);
    }

    static void tell(Child_process const& program, char what) { ASSERT_EQ(::write(program.input(), &what, 1), 1); }

    // The messages of contexts other than the daemon's own until one begins with `last`.
    std::vector<std::string> texts_until(Dlt_reader& viewer, std::string const& last,
                                         milliseconds patience = k_patience) {
        auto const deadline = steady_clock::now() + patience;
        std::vector<std::string> texts;
        while (steady_clock::now() < deadline) {
            for (auto& message : viewer.take()) {
                texts.push_back(message.context + " " + message.text);
                if (message.text.rfind(last, 0) == 0) {
                    return texts;
                }
            }
            std::this_thread::sleep_for(milliseconds(1));
        }
        texts.push_back("never came: " + last);
        return texts;
    }
};

}  // namespace log_test

#endif
